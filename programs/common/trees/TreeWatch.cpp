#include <programs/common/trees/TreeWatch.h>

#include <algorithm>
#include <utility>

namespace Tool {

using Fwk::AttributeRecord;
using Fwk::Entity;
using Fwk::MemberChange;
using Fwk::Ptr;

namespace {

/// Calls `visit` with each entity directly below `entity`.
void forEachBelow(Entity const& entity, Fwk::FunctionRef<void(Ptr<Entity> const&)> visit) {
  for (AttributeRecord const& attr : entity.fwkType().attributes) {
    if (attr.child) {
      if (Ptr<Entity> const child = attr.child->get(&entity)) visit(child);
    } else if (attr.collection) {
      attr.collection->forEach(&entity, [&](Fwk::MemberRef const& member) {
        if (member.entity) visit(member.entity);
        return static_cast<bool>(member.entity);
      });
    }
  }
}

}  // namespace

bool findMember(Entity const& holder, AttributeRecord const& attr, std::string const& key,
                Fwk::FunctionRef<void(Fwk::MemberRef const&)> visit) {
  Fwk::ReflectionResult const result = attr.collection->get(&holder, key, visit);
  if (result.error != Fwk::ReflectionError::malformed) return static_cast<bool>(result);
  // A received key may print as a text that cannot be parsed, such as a prefix of more than 128 bits.
  bool found = false;
  attr.collection->forEach(&holder, [&](Fwk::MemberRef const& member) {
    found = member.key == key;
    if (found) visit(member);
    return !found;
  });
  return found;
}

void TreeWatch::rootsAre(std::vector<Ptr<Entity>> const& roots) {
  subscriptions_.clear();
  new_.clear();
  dirty_.clear();
  paths_.clear();
  roots_ = roots;
  for (auto const& root : roots)
    if (root) watch(*root);
}

void TreeWatch::watch(Entity& entity) {
  subscriptions_[&entity] = Fwk::observe(entity, [this](Fwk::Notification const& n) { handle(n); });
  forEachBelow(entity, [this](Ptr<Entity> const& below) { watch(*below); });
}

void TreeWatch::watchNew(Ptr<Entity> const& entity) {
  new_.insert(entity.get());
  subscriptions_[entity.get()] = Fwk::observe(*entity, [this](Fwk::Notification const& n) { handle(n); });
  forEachBelow(*entity, [this](Ptr<Entity> const& below) { watchNew(below); });
}

void TreeWatch::handle(Fwk::Notification const& notification) {
  AttributeRecord const* const attr = notification.entity.fwkType().attribute(notification.attr);
  if (!attr) return;
  if (!new_.contains(&notification.entity)) note(notification, *attr);
  if (attr->child || notification.key.change() == MemberChange::removed) somethingLeft_ = true;
  if (attr->child) {
    if (auto const child = attr->child->get(&notification.entity)) watchNew(child);
  } else if (attr->collection && notification.key.change() == MemberChange::added) {
    std::string key;
    notification.key.appendTo(key);
    findMember(notification.entity, *attr, key, [&](Fwk::MemberRef const& member) {
      if (member.entity) watchNew(member.entity);
    });
  }
}

void TreeWatch::note(Fwk::Notification const& notification, AttributeRecord const& attr) {
  Dirty dirty{Ptr<Entity>(&notification.entity), &attr, {}, notification.entity.fullName() + '/' + attr.name, true};
  if (attr.collection) {
    notification.key.appendTo(dirty.key);
    dirty.path += '[' + dirty.key + ']';
    dirty.wasThere = notification.key.change() != MemberChange::added;
  }
  if (paths_.insert(dirty.path).second) dirty_.push_back(std::move(dirty));
}

std::vector<TreeChange> TreeWatch::take() {
  std::vector<TreeChange> changes;
  paths_.clear();
  new_.clear();
  for (Dirty const& dirty : std::exchange(dirty_, {}))
    if (isInTree(dirty.holder)) appendChanges(changes, dirty);
  if (std::exchange(somethingLeft_, false))
    std::erase_if(subscriptions_, [](auto const& entry) { return !entry.second.active(); });
  return changes;
}

bool TreeWatch::isInTree(Ptr<Entity> entity) const {
  while (Ptr<Entity> const parent = entity->parent()) entity = parent;
  return std::ranges::find(roots_, entity) != roots_.end();
}

void TreeWatch::appendChanges(std::vector<TreeChange>& changes, Dirty const& dirty) {
  using enum TreeChange::Kind;
  auto const append = [&](TreeChange::Kind kind, Ptr<Entity> const& added = nullptr) {
    changes.push_back({kind, dirty.path, dirty.holder, dirty.attr, dirty.key, added});
  };
  if (dirty.attr->child) {
    Ptr<Entity> const child = dirty.attr->child->get(dirty.holder.get());
    child ? append(added, child) : append(removed);
  } else if (!dirty.attr->collection) {
    append(set);
  } else {
    bool const there = findMember(*dirty.holder, *dirty.attr, dirty.key, [&](Fwk::MemberRef const& member) {
      if (!member.entity) return append(set);
      if (dirty.wasThere) append(removed);
      append(added, member.entity);
    });
    if (!there && dirty.wasThere) append(removed);
  }
}

}  // namespace Tool
