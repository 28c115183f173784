#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/ChangeStreamFormat.h>
#include <RouterPlatform/Mirror/ChangeStreamHub.h>

#include <utility>

namespace Fwk::ChangeStream {

using namespace detail;

Source::Source(std::vector<Ptr<Entity>> roots, SourceOptions const& options)
    : hub_(std::make_shared<Hub>(std::move(roots), options)) {}

std::size_t Source::pendingOctets() const noexcept { return hub_->log().octets(); }
std::size_t Source::pendingChanges() const noexcept { return hub_->log().size(); }

/// Writes one record at a time: the walk over an entity and everything below it can pause after any record, while the
/// tree changes. Changes behind the walk are in the log and follow it.
class Writer::Impl : public Subscriber {
 public:
  explicit Impl(std::shared_ptr<Hub> hub) : hub_(std::move(hub)) { hub_->enter(*this); }
  ~Impl() { hub_->leave(*this); }

  bool pending() const noexcept {
    return !live || unmarked_ || !walk_.empty() || inSnapshot_ || hub_->log().lastSequence() > cursor;
  }
  U64 overflows() const noexcept { return overflows_; }

  std::size_t drain(OctetBuffer& out, std::size_t maxOctets) {
    std::size_t const before = out.size();
    if (!pending()) return 0;
    try {
      drainInto(out, maxOctets);
    } catch (...) {
      out.resize(before);
      restart();
      throw;
    }
    return out.size() - before;
  }

  void restart() {
    greeted_ = live = wasLive_ = waiting = false;
    hub_->cursorMoved();
  }

 private:
  /// Progress in an entity that is being written.
  struct Frame {
    Ptr<Entity> entity;
    std::size_t place = 0;
    std::unique_ptr<StreamWalk> members;  ///< of the collection at `place`, once begun
  };

  void drainInto(OctetBuffer& out, std::size_t maxOctets) {
    std::size_t const before = out.size();
    OctetSink sink(out);
    if (!greeted_) greet(sink);
    putRecord(sink, RecordKind::batch, [&] { sink.number(batch_++); });
    if (!live) beginSnapshot(sink);
    next_ = hub_->log().firstBehind(cursor);
    while (step(sink) && out.size() - before < maxOctets) {
    }
    hub_->cursorMoved();
    waiting = !pending();
    if (waiting) hub_->cursorMoved();
  }

  void greet(OctetSink& out) {
    Schema const& schema = hub_->schema();
    putRecord(out, RecordKind::hello, [&] {
      out.text(magic);
      out.number(version);
      out.fixed64(schema.hash());
      out.octets(schema.octets());
    });
    greeted_ = true;
    batch_ = 1;
  }

  void beginSnapshot(OctetSink& out) {
    if (std::exchange(wasLive_, true)) ++overflows_;
    walk_.clear();
    current_ = nullptr;
    hub_->startSnapshot(*this);
    putRecord(out, RecordKind::begin);
    inSnapshot_ = unmarked_ = true;
    nextRoot_ = 0;
  }

  /// Writes one record, or skips a change about which there is nothing to write. False: nothing is left.
  bool step(OctetSink& out) {
    if (!walk_.empty()) {
      stepWalk(out);
    } else if (inSnapshot_) {
      stepSnapshot(out);
    } else if (next_ != ChangeLog::none) {
      ChangeLog::Change const& change = hub_->log()[next_];
      next_ = change.next;
      cursor = change.sequence;
      unmarked_ = true;
      putChange(out, change);
    } else if (unmarked_) {
      putRecord(out, RecordKind::mark);
      unmarked_ = false;
    } else {
      return false;
    }
    return true;
  }

  void stepSnapshot(OctetSink& out) {
    if (nextRoot_ == hub_->roots().size()) {
      putRecord(out, RecordKind::end);
      inSnapshot_ = false;
      return;
    }
    Ptr<Entity> const& root = hub_->roots()[nextRoot_];
    putRecord(out, RecordKind::root, [&] {
      out.number(nextRoot_);
      out.block([&] { out.text(root->fwkType().name); });
      out.text(root->keyText());
    });
    enter(root);
    ++nextRoot_;
  }

  void enter(Ptr<Entity> entity) { walk_.push_back(Frame{std::move(entity), 0, nullptr}); }

  void stepWalk(OctetSink& out) {
    Frame& frame = walk_.back();
    auto const attributes = frame.entity->fwkType().attributes;
    if (frame.members) return stepMembers(out, attributes[frame.place]);
    while (frame.place < attributes.size() && !holdsSomething(frame, attributes[frame.place])) ++frame.place;
    if (frame.place == attributes.size()) {
      putRecord(out, RecordKind::leave);
      walk_.pop_back();
      return;
    }
    AttributeRecord const& attr = attributes[frame.place];
    if (attr.collection) {
      frame.members = attr.collection->stream->walk(objectOf(frame));
      return stepMembers(out, attr);
    }
    ++frame.place;
    if (attr.put)
      putValue(out, *frame.entity, attr);
    else
      putChild(out, *frame.entity, attr);
  }

  static void* objectOf(Frame const& frame) { return frame.entity.get(); }

  static bool holdsSomething(Frame const& frame, AttributeRecord const& attr) {
    if (!attr.streamed()) return false;
    if (attr.collection) return attr.collection->size(objectOf(frame)) > 0;
    return attr.put || attr.child->get(objectOf(frame));
  }

  void stepMembers(OctetSink& out, AttributeRecord const& attr) {
    Frame& frame = walk_.back();
    StreamWalk& members = *frame.members;
    if (members.atEnd()) {
      frame.members = nullptr;
      ++frame.place;
      return;
    }
    Ptr<Entity> const member = members.entity();
    putRecord(out, member ? RecordKind::member : RecordKind::lastRow, [&] {
      putPlace(out, attr);
      if (member) return members.putKey(out);
      out.block([&] { members.putKey(out); });
      members.putValue(out);
    });
    members.next();
    if (member) enter(member);
  }

  static void putPlace(OctetSink& out, AttributeRecord const& attr) {
    out.number(static_cast<U64>(attr.id - firstOwnAttr));
  }

  static void putValue(OctetSink& out, Entity const& entity, AttributeRecord const& attr) {
    putRecord(out, RecordKind::value, [&] {
      putPlace(out, attr);
      attr.put(&entity, out);
    });
  }

  /// Writes the child of the attribute, or that there is none.
  void putChild(OctetSink& out, Entity const& entity, AttributeRecord const& attr) {
    Ptr<Entity> const child = attr.child->get(&entity);
    putRecord(out, child ? RecordKind::member : RecordKind::removed, [&] {
      putPlace(out, attr);
      if (child) out.text(child->name().view());
    });
    if (child) enter(child);
  }

  void putChange(OctetSink& out, ChangeLog::Change const& change) {
    Node const& node = static_cast<Node const&>(*change.node);
    if (!node.reachable(change.sequence)) return;
    Entity const& entity = node.entity();
    AttributeRecord const& attr = entity.fwkType().attributes[change.place];
    goTo(out, node);
    if (attr.put)
      putValue(out, entity, attr);
    else if (attr.child)
      putChild(out, entity, attr);
    else
      putMember(out, entity, attr, change);
  }

  /// Writes the member of the change's key, or that there is none.
  void putMember(OctetSink& out, Entity const& entity, AttributeRecord const& attr, ChangeLog::Change const& change) {
    CollectionStream const& stream = *attr.collection->stream;
    Ptr<Entity> const member = stream.entity(&entity, change.key);
    bool const isRow = !member && stream.contains(&entity, change.key);
    RecordKind const kind = member         ? RecordKind::member
                            : !isRow       ? RecordKind::removed
                            : change.order ? RecordKind::lastRow
                                           : RecordKind::row;
    putRecord(out, kind, [&] {
      putPlace(out, attr);
      if (!isRow) return out.octets(change.key);
      out.block([&] { out.octets(change.key); });
      stream.putValue(&entity, change.key, out);
    });
    if (member) enter(member);
  }

  /// Leads the reader to the entity, unless it is there already.
  void goTo(OctetSink& out, Node const& node) {
    if (current_.get() == &node) return;
    putRecord(out, RecordKind::at, [&] { putPath(out, node); });
    current_ = Ptr<Notifiee>(const_cast<Node*>(&node));
  }

  void putPath(OctetSink& out, Node const& node) {
    if (!node.parent()) return out.number(hub_->rootIndex(node));
    putPath(out, *node.parent());
    AttributeRecord const& attr = *node.attr();
    putPlace(out, attr);
    out.block([&] {
      if (attr.child)
        out.text(node.entity().name().view());
      else
        attr.collection->stream->putMemberKey(node.entity(), out);
    });
  }

  std::shared_ptr<Hub> hub_;
  std::vector<Frame> walk_;     ///< entities that are being written, outermost first
  Ptr<Notifiee> current_;       ///< node of the entity that the reader is at
  U32 next_ = ChangeLog::none;  ///< next change to write; valid during a drain
  std::size_t nextRoot_ = 0;
  U64 batch_ = 1;
  U64 overflows_ = 0;
  bool greeted_ = false;
  bool wasLive_ = false;  ///< the stream has had a snapshot
  bool inSnapshot_ = false;
  bool unmarked_ = true;  ///< something was written since the last mark
};

Writer::Writer(Source const& source) : impl_(std::make_unique<Impl>(source.hub_)) {}
Writer::Writer(Ptr<Entity> root, SourceOptions const& options) : Writer(Source({std::move(root)}, options)) {}
Writer::Writer(Writer&&) noexcept = default;
Writer& Writer::operator=(Writer&&) noexcept = default;
Writer::~Writer() = default;

bool Writer::pending() const noexcept { return impl_->pending(); }
std::size_t Writer::drain(OctetBuffer& out, std::size_t maxOctets) { return impl_->drain(out, maxOctets); }
void Writer::restart() { impl_->restart(); }
void Writer::onPendingIs(std::function<void()> call) { impl_->onPending = std::move(call); }
U64 Writer::overflows() const noexcept { return impl_->overflows(); }

}  // namespace Fwk::ChangeStream
