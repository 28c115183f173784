#pragma once

#include <RouterPlatform/Base/OrderedTable.h>

namespace Fwk {

/// Number of elements that are searched one by one; above it a table has a hash index.
inline constexpr U32 defaultIndexAbove = 8;

/// Values by key in insertion order; notifies nobody. What a collection inside a value type is made of.
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
  /// The key that came last, or null; valid until the map changes.
  K const* lastKey() const noexcept {
    Entry const* const entry = table_.last();
    return entry ? &entry->key : nullptr;
  }

  /// Stores `value` under `key`; a new key comes last, another keeps its place. True unless an equal value stood there.
  /// Throws what copying throws, and std::bad_alloc, having added nothing.
  bool set(K const& key, V const& value) {
    if (Entry* const entry = table_.find(key)) {
      if (entry->value == value) return false;
      entry->value = value;
      return true;
    }
    if constexpr (std::is_trivially_copyable_v<Entry> && std::is_nothrow_default_constructible_v<Entry>) {
      // Reading back as a whole what has just been put together of parts is slow. Key and value may stand in this map.
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

  /// Same size, and equal keys with equal values side by side in insertion order.
  bool operator==(OrderedMap const& other) const {
    return this == &other ||
           (size() == other.size() && std::equal(table_.frozenBegin(), table_.frozenEnd(), other.table_.frozenBegin()));
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
