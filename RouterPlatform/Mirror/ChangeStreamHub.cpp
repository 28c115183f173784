#include <RouterPlatform/Mirror/ChangeStreamHub.h>

#include <RouterPlatform/Mirror/ChangeStreamFormat.h>

#include <algorithm>
#include <stdexcept>

namespace Fwk::ChangeStream::detail {

bool Node::reachable(U64 sequence) const noexcept {
  for (Node const* at = this;; at = at->parent()) {
    if (!at->registered() || at->introduced_ > sequence) return false;
    if (!at->parent()) return true;
    if (at->entity_.parent().get() != &at->parent()->entity_) return false;
  }
}

void Node::handleNotification(Notification const& notification) { hub_.changed(*this, notification); }

/// An entity in a tree is referenced by its holder, so this one has left its tree.
void Node::handleZeroReferences(Entity&) { hub_.forget(*this); }

namespace {

std::vector<TypeRecord const*> typesOf(std::vector<Ptr<Entity>> const& roots) {
  if (roots.size() > maxRoots) throw std::length_error("a change stream has at most 64 trees");
  std::vector<TypeRecord const*> types;
  types.reserve(roots.size());
  for (auto const& root : roots) types.push_back(&root->fwkType());
  return types;
}

U16 placeOf(AttributeRecord const& attr) { return static_cast<U16>(attr.id - firstOwnAttr); }

void* objectOf(Node& node) { return &node.entity(); }

}  // namespace

Hub::Hub(std::vector<Ptr<Entity>> roots, SourceOptions const& options)
    : roots_(std::move(roots)), schema_(typesOf(roots_)), log_(options.maxPendingOctets) {
  observeRoots();
}

Hub::~Hub() { unregisterAll(); }

void Hub::unregisterAll() noexcept {
  for (auto const& [entity, node] : nodes_)
    if (node) node->unregister();
}

U32 Hub::rootIndex(Node const& node) const noexcept {
  auto const found = std::ranges::find_if(roots_, [&](auto const& root) { return root.get() == &node.entity(); });
  return static_cast<U32>(found - roots_.begin());
}

void Hub::observeRoots() {
  for (auto const& root : roots_) observe(*root, nullptr, nullptr, 0);
}

/// Observes the entity and everything below it. An entity that is known is known with everything below it.
void Hub::observe(Entity& entity, Node* parent, AttributeRecord const* attr, U64 introduced) {
  Ptr<Node>& known = nodes_[&entity];
  if (known && known->registered()) {
    known->introducedIs(introduced);
    return;
  }
  known = Ptr<Node>(new Node(*this, entity, parent, attr, introduced));
  Node& node = *known;
  node.hasNotificationActiveIs(true);
  entity.notifieeList().add(node);
  observeMembers(node, introduced);
}

void Hub::observeMembers(Node& node, U64 introduced) {
  for (AttributeRecord const& attr : node.entity().fwkType().attributes) {
    if (attr.child) {
      if (Ptr<Entity> const child = attr.child->get(objectOf(node))) observe(*child, &node, &attr, introduced);
    } else if (attr.streamed() && attr.collection && attr.collection->stream->ofEntities &&
               attr.collection->size(objectOf(node)) > 0) {
      for (auto const walk = attr.collection->stream->walk(objectOf(node)); !walk->atEnd(); walk->next())
        observe(*walk->entity(), &node, &attr, introduced);
    }
  }
}

void Hub::forget(Node& node) noexcept {
  node.unregister();
  nodes_.erase(&node.entity());
}

/// A failed allocation must not reach the caller of the setter. The subscribers get a snapshot when there is memory
/// again.
void Hub::changed(Node& node, Notification const& notification) noexcept {
  AttributeRecord const* const attr = node.entity().fwkType().attribute(notification.attr);
  if (!attr || !attr->streamed()) return;
  try {
    record(node, *attr, notification.key);
  } catch (...) {
    incomplete_ = true;
    lapseAll();
  }
  if (anyWaiting_) wakeWaiting();
}

void Hub::record(Node& node, AttributeRecord const& attr, NotificationKey const& key) {
  key_.clear();
  if (attr.put) {
    note(node, attr, false);
  } else if (attr.child) {
    U64 const introduced = note(node, attr, true);
    if (Ptr<Entity> const child = attr.child->get(objectOf(node))) observe(*child, &node, &attr, introduced);
  } else {
    recordMember(node, attr, key);
  }
}

void Hub::recordMember(Node& node, AttributeRecord const& attr, NotificationKey const& key) {
  CollectionStream const& stream = *attr.collection->stream;
  OctetSink sink(key_);
  if (!stream.putKey(key, sink)) return;
  bool const replaced = key.change() == MemberChange::replaced;
  bool const present = stream.contains(objectOf(node), key_);
  U64 const introduced = note(node, attr, !replaced);
  if (!present || replaced) return;
  if (Ptr<Entity> const member = stream.entity(objectOf(node), key_)) observe(*member, &node, &attr, introduced);
  if (!stream.isLast(objectOf(node), key)) recordFollowing(node, attr);
}

/// An earlier observer has already added further members behind the new one. A mirror puts each member that it is told
/// of last, so they are entered again, in their order.
void Hub::recordFollowing(Node& node, AttributeRecord const& attr) {
  CollectionStream const& stream = *attr.collection->stream;
  OctetBuffer const added = key_;
  auto const walk = stream.walk(objectOf(node));
  OctetSink sink(key_);
  auto const readKey = [&] {
    key_.clear();
    walk->putKey(sink);
  };
  for (bool behind = false; !walk->atEnd(); walk->next()) {
    readKey();
    if (behind) {
      U64 const introduced = note(node, attr, true);
      if (Ptr<Entity> const member = walk->entity()) observe(*member, &node, &attr, introduced);
    }
    behind = behind || key_ == added;
  }
}

/// Enters the change of `key_`. Changes of an entity that no subscriber has yet are not entered: it will be told as a
/// whole. A value that no subscriber has looked at keeps its place in the log. Returns the sequence of the change with
/// which subscribers get the new state.
U64 Hub::note(Node& node, AttributeRecord const& attr, bool order) {
  if (anyLive_ && node.introduced() > furthest_) return node.introduced();
  ++sequence_;
  if (!anyLive_) return sequence_;
  ChangeLog::What const what{&node, placeOf(attr), order, key_};
  U32 const known = log_.find(what);
  if (known == ChangeLog::none) {
    makeRoomFor(key_);
    if (anyLive_) log_.add(what, sequence_);
  } else if (order || log_[known].sequence <= furthest_) {
    log_.touch(known, sequence_);
  }
  return sequence_;
}

/// Drops the oldest changes; subscribers that needed them lapse.
void Hub::makeRoomFor(Octets key) noexcept {
  while (log_.fullFor(key) && !log_.empty()) {
    U64 const lost = log_[log_.first()].sequence;
    for (Subscriber* const subscriber : subscribers_)
      if (subscriber->cursor < lost) subscriber->live = false;
    log_.dropFirst();
    cursorMoved();
  }
  if (log_.fullFor(key)) lapseAll();
}

void Hub::lapseAll() noexcept {
  for (Subscriber* const subscriber : subscribers_) subscriber->live = false;
  cursorMoved();
}

void Hub::wakeWaiting() {
  anyWaiting_ = false;
  for (std::size_t i = 0; i < subscribers_.size(); ++i) {
    Subscriber& subscriber = *subscribers_[i];
    if (!subscriber.waiting || (subscriber.live && log_.lastSequence() <= subscriber.cursor)) {
      anyWaiting_ = anyWaiting_ || subscriber.waiting;
      continue;
    }
    subscriber.waiting = false;
    if (subscriber.onPending) subscriber.onPending();
  }
}

void Hub::leave(Subscriber& subscriber) noexcept {
  std::erase(subscribers_, &subscriber);
  cursorMoved();
}

void Hub::startSnapshot(Subscriber& subscriber) {
  if (incomplete_) {
    unregisterAll();
    nodes_.clear();
    observeRoots();
    incomplete_ = false;
  }
  subscriber.live = true;
  subscriber.cursor = sequence_;
  cursorMoved();
}

void Hub::cursorMoved() noexcept {
  U64 nearest = ~U64{0};
  anyLive_ = anyWaiting_ = false;
  for (Subscriber const* const subscriber : subscribers_) {
    anyWaiting_ = anyWaiting_ || subscriber->waiting;
    if (!subscriber->live) continue;
    anyLive_ = true;
    nearest = std::min(nearest, subscriber->cursor);
    furthest_ = std::max(furthest_, subscriber->cursor);
  }
  while (!log_.empty() && log_[log_.first()].sequence <= nearest) log_.dropFirst();
}

}  // namespace Fwk::ChangeStream::detail
