#pragma once

#include <RouterPlatform/Base/OrderedTable.h>

namespace Fwk {

/// Number of elements that are searched one by one; above it a table has a hash index.
inline constexpr U32 defaultIndexAbove = 8;

/// Values by key in insertion order; notifies nobody. For collections inside value types.
/// `inlineRoom`: members that need no allocation. `indexAboveMembers`: members that are searched one by one.
///
/// A moved-from map is empty. Thread rule: that of `OrderedTable`; `find`, `contains`, `==` and `forEach` only read.
template <class K, class V, U32 inlineRoom = 0, U32 indexAboveMembers = defaultIndexAbove>
class OrderedMap {
 public:
  /// A key with its value, as a walk gives them.
  struct Entry {
    K key;
    V value;
    bool operator==(Entry const&) const = default;
  };

 private:
  struct Policy {
    static constexpr U32 inlineCapacity = inlineRoom;
    static constexpr U32 indexAbove = indexAboveMembers;
    static K const& key(Entry const& entry) noexcept { return entry.key; }
  };
  using Table = OrderedTable<Entry, Policy>;

 public:
  U32 size() const noexcept { return table_.size(); }
  bool empty() const noexcept { return table_.empty(); }
  bool contains(K const& key) const noexcept { return table_.contains(key); }

  /// The value of `key`, or null; valid until the map changes.
  V const* find(K const& key) const noexcept {
    Entry const* const entry = table_.find(key);
    return entry ? &entry->value : nullptr;
  }
  /// The key that was added last, or null; valid until the map changes.
  K const* lastKey() const noexcept {
    Entry const* const entry = table_.last();
    return entry ? &entry->key : nullptr;
  }

  /// Stores `value` under `key`; a new key comes last, another keeps its place. True unless an equal value stood there.
  /// Throws the exceptions of copying, and std::bad_alloc, having changed nothing.
  bool set(K const& key, V const& value) {
    return set(key, value, [] {});
  }

  /// The same. Calls `before()` when the map is about to change, which may be the end of a `key` that stands in it.
  template <class Before>
  bool set(K const& key, V const& value, Before before) {
    static_assert(std::is_nothrow_move_assignable_v<V>, "a value is replaced whole or not at all");
    if (Entry* const entry = table_.find(key)) {
      if (entry->value == value) return false;
      before();
      if constexpr (std::is_nothrow_copy_assignable_v<V>)
        entry->value = value;
      else
        entry->value = V(value);
      return true;
    }
    before();
    if constexpr (std::is_trivially_copyable_v<Entry> && std::is_nothrow_default_constructible_v<Entry>) {
      // Fills the entry in its place: a copy of a just written entry would wait for its stores. Key and value may stand
      // in this map.
      if (table_.hasRoom()) {
        table_.addInPlace([&](Entry& entry) noexcept {
          entry.key = key;
          entry.value = value;
        });
        return true;
      }
    }
    table_.add(Entry{key, value});
    return true;
  }

  /// Takes the entry of `key` out, if there is one.
  std::optional<Entry> remove(K const& key) noexcept { return table_.remove(key); }
  void clear() noexcept { table_.clear(); }

  /// Same size, and equal keys with equal values side by side in insertion order. A comparison that throws stops the
  /// process.
  bool operator==(OrderedMap const& other) const noexcept {
    if (this == &other) return true;
    if (size() != other.size()) return false;
    auto theirs = other.table_.frozenBegin();
    for (auto ours = table_.frozenBegin(); ours != table_.frozenEnd(); ++ours, ++theirs)
      if (!(*ours == *theirs)) return false;
    return true;
  }

  /// Walks copies of the entries; the map may change meanwhile.
  using Iterator = typename Table::template CopyingIterator<>;
  Iterator begin() const noexcept { return Iterator(table_); }
  std::default_sentinel_t end() const noexcept { return {}; }

  /// Calls `call(key, value)` for each entry, in order. The map must not change meanwhile.
  template <class Call>
  void forEach(Call call) const {
    table_.forEach([&](Entry const& entry) { call(entry.key, entry.value); });
  }

 private:
  Table table_;
};

}  // namespace Fwk
