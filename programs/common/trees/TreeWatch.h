#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Tool {

/// A change of one attribute or one member somewhere in a tree.
struct TreeChange {
  enum class Kind {
    set,      ///< a scalar, or a member that is a value
    added,    ///< an entity, with everything below it
    removed,  ///< a member, or a child
  };
  Kind kind;
  std::string path;  ///< `config/intf[Ethernet1]/raLifetime`
  Fwk::Ptr<Fwk::Entity> holder;
  Fwk::AttributeRecord const* attr;
  std::string key;              ///< of a member, plain text
  Fwk::Ptr<Fwk::Entity> added;  ///< for `added`
};

/// Observes trees, also entities that are added later, and merges changes: one change per attribute or member, however
/// often it changed, and one per entity that is added with everything below it.
class TreeWatch {
 public:
  TreeWatch() = default;
  TreeWatch(TreeWatch const&) = delete;
  TreeWatch& operator=(TreeWatch const&) = delete;

  /// Watches these trees instead of the former ones. Pending changes of the former ones are dropped.
  void rootsAre(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots);
  /// The changes since the last call, in the order of their first change.
  std::vector<TreeChange> take();

 private:
  struct Dirty {
    Fwk::Ptr<Fwk::Entity> holder;
    Fwk::AttributeRecord const* attr;
    std::string key;
    std::string path;
    bool wasThere;  ///< before the first change
  };

  void watch(Fwk::Entity& entity);
  void watchNew(Fwk::Ptr<Fwk::Entity> const& entity);
  void handle(Fwk::Notification const& notification);
  void note(Fwk::Notification const& notification, Fwk::AttributeRecord const& attr);
  bool isInTree(Fwk::Ptr<Fwk::Entity> entity) const;
  static void appendChanges(std::vector<TreeChange>& changes, Dirty const& dirty);

  std::vector<Fwk::Ptr<Fwk::Entity>> roots_;
  std::unordered_map<Fwk::Entity const*, Fwk::Subscription> subscriptions_;
  std::unordered_set<Fwk::Entity const*> new_;  ///< added since the last `take`: part of another change
  bool somethingLeft_ = false;                  ///< the trees since the last `take`
  std::vector<Dirty> dirty_;
  std::unordered_set<std::string> paths_;  ///< of the entries of `dirty_`
};

/// Calls `visit` with the member of that key; false if there is none.
bool findMember(Fwk::Entity const& holder, Fwk::AttributeRecord const& attr, std::string const& key,
                Fwk::FunctionRef<void(Fwk::MemberRef const&)> visit);

}  // namespace Tool
