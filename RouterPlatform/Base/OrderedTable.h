#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Base/OrderedIndex.h>
#include <RouterPlatform/Base/Ptr.h>

#include <concepts>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

namespace Fwk {

/// Room for one element that may be absent: an optional, or a counted pointer that is null.
template <class Element>
struct OrderedSlot {
  using Type = std::optional<Element>;
  static Element& get(Type& slot) noexcept { return *slot; }
  static Element const& get(Type const& slot) noexcept { return *slot; }
  static void empty(Type& slot) noexcept { slot.reset(); }
};
/// The slot of a pointer, which has an empty value of its own.
template <class T>
struct OrderedSlot<Ptr<T>> {
  using Type = Ptr<T>;
  static Ptr<T>& get(Type& slot) noexcept { return slot; }
  static Ptr<T> const& get(Type const& slot) noexcept { return slot; }
  static void empty(Type& slot) noexcept { slot = nullptr; }
};

/// The place of a walk over an `OrderedTable`. The table moves the walks in its list along.
struct OrderedWalk {
  U32 position = 0;
  U32 end = 0;         ///< elements that are added later stand from here on
  bool stale = false;  ///< the element it stood at has been compacted away; `position` is the next one's already
  bool tableGone = false;
  OrderedWalk* outer = nullptr;

  ROUTER_PLATFORM_EXPORT void enter(OrderedWalk*& walks) noexcept;
  ROUTER_PLATFORM_EXPORT void leave(OrderedWalk*& walks) noexcept;
};

/// Room for `capacity` slots in the table itself, not constructed.
template <class Slot, U32 capacity>
struct OrderedRoom {
  Slot* slots() noexcept { return reinterpret_cast<Slot*>(octets); }
  alignas(Slot) std::byte octets[capacity * sizeof(Slot)];
};
/// No room.
template <class Slot>
struct OrderedRoom<Slot, 0> {
  Slot* slots() noexcept { return nullptr; }
};

/// Elements by key, in the order of insertion: the base of every keyed collection.
///
/// `Policy::key(element)` gives an element's key, `Policy::inlineCapacity` how many elements have room in the table
/// itself, and `Policy::indexAbove` how many are searched without a hash index. Add, find and remove take constant
/// time.
///
/// Elements stand densely in one array; a removed one leaves a hole until the array is compacted. A walk is registered
/// with the table, which moves it along. A walk sees every element that was there when it began and still is when its
/// turn comes. The table may change in any way during a walk, and may end.
///
/// docs/adr/0001, docs/adr/0014
///
/// Thread rule: one thread at a time; `find`, `contains`, `forEach` and frozen iterators, which enter nothing into the
/// table, may run on several threads while nothing changes.
template <class Element, class Policy>
class OrderedTable {
  using SlotAccess = OrderedSlot<Element>;
  using Slot = typename SlotAccess::Type;
  static constexpr U32 npos = OrderedIndex::npos;
  static constexpr U32 maxCapacity = U32{1} << 30;

 public:
  using Key = std::remove_cvref_t<decltype(Policy::key(std::declval<Element const&>()))>;

  // Written out, so that a constant table can be made without `{}` although nothing fills the room.
  OrderedTable() noexcept {}
  /// The same elements in the same order, none of the walks. Throws what copying an element throws, and std::bad_alloc.
  OrderedTable(OrderedTable const& other) : OrderedTable() { copyFrom(other); }
  /// Leaves `other` empty; walks over it end.
  OrderedTable(OrderedTable&& other) noexcept { takeFrom(other); }
  /// Walks in progress here end. Throws like copying, and is then as it was before.
  OrderedTable& operator=(OrderedTable const& other) {
    if (this != &other) *this = OrderedTable(other);
    return *this;
  }
  OrderedTable& operator=(OrderedTable&& other) noexcept {
    if (this != &other) {
      clear();
      takeFrom(other);
    }
    return *this;
  }
  ~OrderedTable() {
    for (OrderedWalk* walk = walks_; walk; walk = walk->outer) walk->tableGone = true;
    destroySlots();
    releaseHeap();
  }

  U32 size() const noexcept { return live_; }
  bool empty() const noexcept { return live_ == 0; }

  /// The element of `key`, or null; valid until the table changes.
  Element* find(Key const& key) noexcept {
    U32 const position = positionOf(key);
    return position == npos ? nullptr : &SlotAccess::get(slots()[position]);
  }
  Element const* find(Key const& key) const noexcept { return const_cast<OrderedTable*>(this)->find(key); }
  bool contains(Key const& key) const noexcept { return positionOf(key) != npos; }
  /// The element that was added last, or null; valid until the table changes.
  Element const* last() const noexcept {
    return used_ ? &SlotAccess::get(slots()[used_ - 1]) : nullptr;  // no hole ever stands at the end
  }

  /// Whether add() will not reallocate.
  bool hasRoom() const noexcept { return used_ < capacity_; }

  /// Appends `element`, whose key is not there. Throws std::bad_alloc, having changed nothing.
  Element& add(Element element) {
    reserveOneMore();
    return entered(std::construct_at(slots() + used_, std::move(element)));
  }
  /// The same with a default element in its place, which `fill(element)` completes: nothing is moved.
  template <class Fill>
  Element& addInPlace(Fill fill) {
    static_assert(std::is_nothrow_default_constructible_v<Element> && std::is_nothrow_invocable_v<Fill, Element&>);
    reserveOneMore();
    Slot* const slot = std::construct_at(slots() + used_, std::in_place);
    fill(SlotAccess::get(*slot));
    return entered(slot);
  }

  /// Takes the element of `key` out, if it is there. `key` may be the element's own.
  std::optional<Element> remove(Key const& key) noexcept {
    U32 const position = positionOf(key);
    if (position == npos) return std::nullopt;
    Slot& slot = slots()[position];
    if (index_) index_->remove(hash(slot), position);
    std::optional<Element> removed(std::move(SlotAccess::get(slot)));
    SlotAccess::empty(slot);
    --live_;
    dropTrailingHoles();
    passLeadingHoles();
    if (used_ - live_ > live_ + 8) compact();
    return removed;
  }

  /// Takes all elements out; walks in progress end. The room stays.
  void clear() noexcept {
    destroySlots();
    first_ = used_ = live_ = 0;
    index_.reset();
    limitWalks();
  }

  /// A walk in progress. Reading the element it stands at is allowed until the table changes.
  class Walk : private OrderedWalk {
   public:
    explicit Walk(OrderedTable const& table) noexcept
        : OrderedWalk{.position = table.first_, .end = table.used_}, table_(&table) {
      enter(table.walks_);
    }
    Walk(Walk const& other) noexcept : OrderedWalk(other), table_(other.table_) {
      if (!tableGone) enter(table_->walks_);
    }
    Walk& operator=(Walk const&) = delete;
    ~Walk() {
      if (!tableGone) leave(table_->walks_);
    }

    bool atEnd() const noexcept { return tableGone || position >= end; }
    Element const& element() const noexcept { return SlotAccess::get(table_->slots()[position]); }
    void next() noexcept {
      if (tableGone) return;
      if (!stale) ++position;
      stale = false;
      skipHoles();
    }
    /// Moves on to the next element, or to the end, if its element has been removed.
    void settle() noexcept {
      if (tableGone) return;
      stale = false;
      skipHoles();
    }

   private:
    void skipHoles() noexcept {
      while (position < end && !table_->slots()[position]) ++position;
    }

    OrderedTable const* table_;
  };

  /// A walk that gives values made of the elements, so that the table may change before the next one.
  template <class Value = Element>
  class CopyingIterator {
   public:
    explicit CopyingIterator(OrderedTable const& table) noexcept : walk_(table) {}
    Value operator*() const { return Value(walk_.element()); }
    /// The element itself; valid until the table changes.
    Element const* operator->() const noexcept requires std::same_as<Value, Element> { return &walk_.element(); }
    /// Moves on if its element has been removed: for a walk that pauses after a step.
    void settle() noexcept { walk_.settle(); }
    CopyingIterator& operator++() noexcept {
      walk_.next();
      return *this;
    }
    bool operator==(std::default_sentinel_t) const noexcept { return walk_.atEnd(); }

   private:
    Walk walk_;
  };

  /// Calls `call(element)` for each element. The table must not change meanwhile; in return nothing is registered, so
  /// several threads may do this at once.
  template <class Call>
  void forEach(Call call) const {
    Slot const* const all = slots();
    for (U32 i = first_; i < used_; ++i)
      if (all[i]) call(SlotAccess::get(all[i]));
  }

  /// Elements of a table that does not change while they are walked: plain iterators, nothing registered.
  class FrozenIterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = Element const*;
    using reference = Element const&;
    FrozenIterator() noexcept = default;
    FrozenIterator(Slot const* slot, Slot const* end) noexcept : slot_(slot), end_(end) { skipHoles(); }
    Element const& operator*() const noexcept { return SlotAccess::get(*slot_); }
    FrozenIterator& operator++() noexcept {
      ++slot_;
      skipHoles();
      return *this;
    }
    FrozenIterator operator++(int) noexcept {
      FrozenIterator before(*this);
      ++*this;
      return before;
    }
    bool operator==(FrozenIterator const&) const noexcept = default;

   private:
    void skipHoles() noexcept {
      while (slot_ != end_ && !*slot_) ++slot_;
    }
    Slot const* slot_ = nullptr;
    Slot const* end_ = nullptr;
  };
  FrozenIterator frozenBegin() const noexcept { return {slots() + first_, slots() + used_}; }
  FrozenIterator frozenEnd() const noexcept { return {slots() + used_, slots() + used_}; }

 private:
  static_assert(std::is_nothrow_move_constructible_v<Slot> && std::is_nothrow_move_assignable_v<Slot>,
                "a change never stops half way");

  /// Of an element, when there is an index.
  U32 hash(Slot const& slot) const noexcept { return index_->hash(Policy::key(SlotAccess::get(slot))); }

  Slot* slots() const noexcept { return heap_ ? heap_ : inline_.slots(); }

  U32 positionOf(Key const& key) const noexcept {
    Slot const* const all = slots();
    if (index_)
      return index_->find(index_->hash(key), [&](U32 i) { return Policy::key(SlotAccess::get(all[i])) == key; });
    // Compares every element and selects the result without a branch: a mispredicted branch costs more than the other
    // comparisons. A copy of the key can stay in registers.
    U32 found = npos;
    std::conditional_t<std::is_trivially_copyable_v<Key>, Key const, Key const&> wanted = key;
    for (U32 i = first_; i < used_; ++i) {
      if (!all[i]) continue;
      bool const equal = Policy::key(SlotAccess::get(all[i])) == wanted;
      found = equal ? i : found;
    }
    return found;
  }

  /// Commits the new last slot, already constructed.
  Element& entered(Slot* slot) noexcept {
    if (index_) index_->add(hash(*slot), used_);
    ++used_;
    ++live_;
    return SlotAccess::get(*slot);
  }

  /// Every step of an addition that may throw.
  void reserveOneMore() {
    // Inline room is used to the last slot. Allocated room grows, unless a quarter of it is holes.
    if (used_ == capacity_ && used_ - live_ > (heap_ ? used_ / 4 : 0)) compact();
    if (used_ == capacity_) growSlots(capacity_ < 2 ? 4 : capacity_ * 2);
    if (live_ + 1 > Policy::indexAbove && (!index_ || !index_->hasRoomFor(live_ + 1))) buildIndex(live_ * 2 + 1);
  }

  void buildIndex(U32 members) {
    index_ = std::make_unique<OrderedIndex>(members);
    Slot const* const all = slots();
    for (U32 i = 0; i < used_; ++i)
      if (all[i]) index_->add(hash(all[i]), i);
  }

  void growSlots(U32 capacity) {
    if (capacity > maxCapacity) throw std::bad_alloc();
    Slot* const grown = std::allocator<Slot>().allocate(capacity);
    Slot* const old = slots();
    for (U32 i = 0; i < used_; ++i) {
      std::construct_at(grown + i, std::move(old[i]));
      std::destroy_at(old + i);
    }
    releaseHeap();
    heap_ = grown;
    capacity_ = capacity;
  }

  /// Closes the holes and moves the walks along. Takes time per slot in use, not per cell of the index.
  void compact() noexcept {
    Slot* const all = slots();
    for (OrderedWalk* walk = walks_; walk; walk = walk->outer) {
      walk->stale = walk->stale || walk->position >= used_ || !all[walk->position];
      walk->position = liveBefore(walk->position);
      walk->end = liveBefore(walk->end);
    }
    U32 to = 0;
    for (U32 from = 0; from < used_; ++from) {
      if (!all[from]) continue;
      if (from != to) {
        all[to] = std::move(all[from]);
        SlotAccess::empty(all[from]);
        if (index_) index_->move(hash(all[to]), from, to);
      }
      ++to;
    }
    std::destroy(all + to, all + used_);
    first_ = 0;
    used_ = to;
    if (live_ <= Policy::indexAbove) index_.reset();
  }

  U32 liveBefore(U32 position) const noexcept {
    Slot const* const all = slots();
    U32 live = 0;
    for (U32 i = 0; i < position && i < used_; ++i) live += all[i] ? 1U : 0U;
    return live;
  }

  void dropTrailingHoles() noexcept {
    while (used_ > 0 && !slots()[used_ - 1]) std::destroy_at(slots() + --used_);
    limitWalks();
  }

  /// Each slot is passed once until the next compaction: removing every element from the front takes constant time
  /// each.
  void passLeadingHoles() noexcept {
    while (first_ < used_ && !slots()[first_]) ++first_;
    if (used_ == 0) first_ = 0;
  }

  /// Keeps elements that are added from now on behind the end of every walk in progress.
  void limitWalks() noexcept {
    for (OrderedWalk* walk = walks_; walk; walk = walk->outer)
      if (walk->end > used_) walk->end = used_;
  }

  void copyFrom(OrderedTable const& other) {
    other.forEach([this](Element const& element) { add(element); });
  }

  /// Moves the whole of `other` into this table, which is empty.
  void takeFrom(OrderedTable& other) noexcept {
    if (other.heap_) {
      releaseHeap();
      heap_ = std::exchange(other.heap_, nullptr);
      capacity_ = std::exchange(other.capacity_, Policy::inlineCapacity);
    } else {
      std::uninitialized_move_n(other.slots(), other.used_, slots());
      other.destroySlots();
    }
    index_ = std::move(other.index_);
    first_ = std::exchange(other.first_, 0);
    used_ = std::exchange(other.used_, 0);
    live_ = std::exchange(other.live_, 0);
    other.limitWalks();
  }

  void destroySlots() noexcept { std::destroy(slots(), slots() + used_); }

  void releaseHeap() noexcept {
    if (heap_) std::allocator<Slot>().deallocate(heap_, capacity_);
  }

  Slot* heap_ = nullptr;
  std::unique_ptr<OrderedIndex> index_;
  mutable OrderedWalk* walks_ = nullptr;  ///< walks in progress, innermost first
  U32 first_ = 0;                         ///< slot of the first element; only holes stand before it
  U32 used_ = 0;                          ///< slots in use, holes included
  U32 live_ = 0;
  U32 capacity_ = Policy::inlineCapacity;
  [[no_unique_address]] mutable OrderedRoom<Slot, Policy::inlineCapacity> inline_;
};

}  // namespace Fwk
