#pragma once

#include <RouterPlatform/Base/OrderedTable.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

/// An `OrderedTable` beside the simplest thing that does the same: a vector of elements, each with a serial number.
/// Shared by the randomised tests and the fuzzer.
namespace OrderedTableModel {

using Fwk::U32;

/// What is kept in the table. `serial` tells an element from a later one of the same key.
struct Item {
  U32 key = 0;
  U32 serial = 0;
  bool operator==(Item const&) const = default;
};

/// Items in the table itself, four of them without allocation.
struct InlineItems {
  using Element = Item;
  struct Policy {
    static constexpr U32 inlineCapacity = 4;
    static constexpr U32 indexAbove = 8;
    static U32 const& key(Item const& item) noexcept { return item.key; }
  };
  static Element make(Item item) { return item; }
  static Item item(Element const& element) { return element; }
};

/// Counted items, as collections of entities have them.
struct CountedItems {
  struct Counted : Fwk::PtrInterface<Counted> {
    explicit Counted(Item i) : item(i) {}
    void onZeroReferences() noexcept {
      if (releaseLastReference()) delete this;
    }
    Item const item;
  };
  using Element = Fwk::Ptr<Counted>;
  struct Policy {
    static constexpr U32 inlineCapacity = 0;
    static constexpr U32 indexAbove = 8;
    static U32 const& key(Element const& element) noexcept { return element->item.key; }
  };
  static Element make(Item item) { return Element(new Counted(item)); }
  static Item item(Element const& element) { return element->item; }
};

/// More room in the table than members that are searched one by one.
struct MuchInlineItems : InlineItems {
  struct Policy : InlineItems::Policy {
    static constexpr U32 inlineCapacity = 12;
    static constexpr U32 indexAbove = 3;
  };
};

/// Thrown when table and model differ.
struct Difference : std::logic_error {
  using std::logic_error::logic_error;
};

/// Performs operations on both, with walks in progress, and throws `Difference` as soon as they differ.
template <class Items>
class Pair {
  using Table = Fwk::OrderedTable<typename Items::Element, typename Items::Policy>;
  using TableWalk = typename Table::Walk;

 public:
  enum Operation : U32 {
    add,
    remove,
    find,
    clear,
    beginWalk,
    stepWalk,
    endWalk,
    copyWalk,
    renew,
    copy,
    move,
    operations
  };
  static constexpr std::size_t maxWalks = 6;

  U32 size() const { return static_cast<U32>(model_.size()); }

  /// One operation on both; `key` also selects the walk.
  void perform(Operation operation, U32 key) {
    switch (operation) {
      case add:
        return addItem(key);
      case remove:
        return removeItem(key);
      case find:
        return compareFind(key);
      case clear:
        table_->clear();
        return model_.clear();
      case beginWalk:
        return begin();
      case stepWalk:
        return step(key);
      case endWalk:
        if (!walks_.empty()) walks_.erase(walks_.begin() + static_cast<std::ptrdiff_t>(key % walks_.size()));
        return;
      case copyWalk:
        if (!walks_.empty() && walks_.size() < maxWalks) walks_.push_back(walks_[key % walks_.size()]);
        return;
      case renew:
        table_ = std::make_unique<Table>();  // the former ends under its walks
        return model_.clear();
      case copy:
        return copyTable();
      case move:
        return moveTable();
      case operations:
        return;
    }
  }

  /// Compares everything there is to see.
  void compare() {
    check(table_->size() == size() && table_->empty() == model_.empty(), "size");
    std::vector<Item> seen;
    table_->forEach([&](auto const& element) { seen.push_back(Items::item(element)); });
    check(seen == model_, "forEach");
    seen.clear();
    for (auto at = table_->frozenBegin(); at != table_->frozenEnd(); ++at) seen.push_back(Items::item(*at));
    check(seen == model_, "frozen");
    seen.clear();
    for (TableWalk walk(*table_); !walk.atEnd(); walk.next()) seen.push_back(Items::item(walk.element()));
    check(seen == model_, "walk");
    for (Item const& item : model_) compareFind(item.key);
  }

 private:
  static constexpr U32 none = 0xffffffff;

  /// A walk over the table, and which serials it has yet to see: those after `at` and before `limit`.
  struct Walking {
    Walking(Table const& table, U32 start, U32 end) : walk(table), at(start), limit(end) {}
    TableWalk walk;
    U32 at;
    U32 limit;
    bool ended = false;
  };
  // A registered walk is not moved: copies stand in a list of pointers.
  struct WalkingRef {
    explicit WalkingRef(std::unique_ptr<Walking> w) : walking(std::move(w)) {}
    WalkingRef(WalkingRef const& other) : walking(std::make_unique<Walking>(*other.walking)) {}
    WalkingRef(WalkingRef&&) noexcept = default;
    WalkingRef& operator=(WalkingRef&&) noexcept = default;
    ~WalkingRef() = default;
    std::unique_ptr<Walking> walking;
  };

  static void check(bool same, char const* what) {
    if (!same) throw Difference(what);
  }

  auto modelOf(U32 key) { return std::ranges::find(model_, key, &Item::key); }

  void addItem(U32 key) {
    if (modelOf(key) != model_.end()) return check(table_->contains(key), "contains");
    Item const item{key, nextSerial_++};
    check(Items::item(table_->add(Items::make(item))) == item, "added");
    model_.push_back(item);
  }

  void removeItem(U32 key) {
    auto const known = modelOf(key);
    auto const removed = table_->remove(key);
    check(removed.has_value() == (known != model_.end()), "removed");
    if (!removed) return;
    check(Items::item(*removed) == *known, "what was removed");
    model_.erase(known);
  }

  void compareFind(U32 key) {
    auto const known = modelOf(key);
    auto* const found = table_->find(key);
    check((found != nullptr) == (known != model_.end()), "found");
    check(table_->contains(key) == (found != nullptr), "contains");
    if (found) check(Items::item(*found) == *known, "what was found");
  }

  void begin() {
    if (walks_.size() == maxWalks) return;
    walks_.emplace_back(std::make_unique<Walking>(*table_, none, nextSerial_));
    arrive(*walks_.back().walking, 0);
  }

  void step(U32 choice) {
    if (walks_.empty()) return;
    Walking& walking = *walks_[choice % walks_.size()].walking;
    if (walking.ended) return;
    walking.walk.next();
    arrive(walking, walking.at + 1);
  }

  /// The walk must stand at the first element whose serial is at least `from`, or have ended.
  void arrive(Walking& walking, U32 from) {
    auto const next = std::ranges::find_if(
        model_, [&](Item const& item) { return item.serial >= from && item.serial < walking.limit; });
    walking.ended = next == model_.end();
    check(walking.walk.atEnd() == walking.ended, "end of a walk");
    if (walking.ended) return;
    check(Items::item(walking.walk.element()) == *next, "element of a walk");
    walking.at = next->serial;
  }

  /// The table gets a copy of its own elements: the same, but those that walks were to see are gone.
  void copyTable() {
    Table copied(*table_);
    *table_ = copied;
    endWalks();
    compare();
  }

  /// Another table takes the elements over; the former stays, for the walks over it.
  void moveTable() {
    auto moved = std::make_unique<Table>(std::move(*table_));
    check(table_->empty() && table_->frozenBegin() == table_->frozenEnd(), "moved away");
    former_ = std::exchange(table_, std::move(moved));
    endWalks();
    compare();
  }

  void endWalks() {
    for (WalkingRef const& ref : walks_) ref.walking->limit = 0;
  }

  std::unique_ptr<Table> table_ = std::make_unique<Table>();
  std::unique_ptr<Table> former_;
  std::vector<Item> model_;
  std::vector<WalkingRef> walks_;
  U32 nextSerial_ = 0;
};

}  // namespace OrderedTableModel
