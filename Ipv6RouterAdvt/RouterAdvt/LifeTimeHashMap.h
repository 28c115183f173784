#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/ValueTypes.h>
#include <RouterPlatform/Base/OrderedMap.h>

namespace RouterAdvt {

/// Lifetimes that have been dealt with: the builder's notebook while it groups DNS entries by lifetime. Notifies
/// nobody.
class ROUTER_ADVT_EXPORT LifeTimeHashMap {
 public:
  enum Attr : AttrId {
    visitedAttr = Fwk::firstOwnAttr,
  };

  // As many DNS options as ever fit into one advertisement have room without allocation.
  using Visited = Fwk::OrderedMap<U32, bool, 96, 96>;

  LifeTimeHashMap() = default;
  /// The text form of a value that holds a collection cannot be read: calling this stops the process.
  LifeTimeHashMap(String::IteratorConst& pos, String::IteratorConst const& end);

  /// Lifetimes in seconds to whether they were visited.
  Visited const& visited() const { return visited_; }
  /// False for a lifetime that is not there.
  bool visited(U32 lifetime) const {
    bool const* const found = visited_.find(lifetime);
    return found && *found;
  }
  void visitedIs(U32 lifetime, bool value) { visited_.set(lifetime, value); }
  /// Removes the entry, if there is one.
  void visitedDel(U32 lifetime) { visited_.remove(lifetime); }
  void visitedDelAll() { visited_.clear(); }

  bool operator==(LifeTimeHashMap const& other) const { return visited_ == other.visited_; }
  /// True when nothing is stored.
  bool operator!() const { return visited_.empty(); }

  static constexpr char const* fwkTypeName = "RouterAdvt::LifeTimeHashMap";
  static Fwk::TypeRecord const& typeRecord();
  static constexpr auto storedAttributes() {
    return std::tuple(Fwk::StoredAttribute{"visited", &LifeTimeHashMap::visited_});
  }

 private:
  Visited visited_;
};

/// The text form: `None`, whatever is stored.
ROUTER_ADVT_EXPORT String valueToStrep(LifeTimeHashMap const& value);
ROUTER_ADVT_EXPORT std::ostream& operator<<(std::ostream& out, LifeTimeHashMap const& value);

}  // namespace RouterAdvt
