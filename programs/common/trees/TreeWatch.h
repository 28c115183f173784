#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Tool {

/// What has become of one attribute, or one member, somewhere in a tree.
struct TreeChange {
  enum class Kind {
    set,      ///< a scalar, or a member that is a value
    added,    ///< an entity, with all that is below it
    removed,  ///< a member, or a child
  };
  Kind kind;
  std::string path;  ///< `config/intf[Ethernet1]/raLifetime`
  Fwk::Ptr<Fwk::Entity> holder;
  Fwk::AttributeRecord const* attr;
  std::string key;              ///< of a member, plain text
  Fwk::Ptr<Fwk::Entity> added;  ///< for `added`
};

/// Observes trees, also what comes into them later, and puts together what changes: one change an attribute or member,
/// however often it has changed, and one for an entity that comes with all that is in it.
class TreeWatch {
 public:
  TreeWatch() = default;
  TreeWatch(TreeWatch const&) = delete;
  TreeWatch& operator=(TreeWatch const&) = delete;

  /// Watches these trees, and no others any more. What had changed in the others is forgotten.
  void rootsAre(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots);
  /// What has changed since the last call, in the order in which it began to.
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
  std::unordered_set<Fwk::Entity const*> new_;  ///< came since the last `take`: a part of a change already
  bool somethingLeft_ = false;                  ///< the trees since the last `take`
  std::vector<Dirty> dirty_;
  std::unordered_set<std::string> paths_;  ///< of what is in `dirty_`
};

/// Calls `visit` with the member of that key; false: there is none.
bool findMember(Fwk::Entity const& holder, Fwk::AttributeRecord const& attr, std::string const& key,
                Fwk::FunctionRef<void(Fwk::MemberRef const&)> visit);

}  // namespace Tool
