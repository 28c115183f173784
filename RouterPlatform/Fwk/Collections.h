#pragma once

#include <RouterPlatform/Base/OrderedMap.h>
#include <RouterPlatform/Base/OrderedTable.h>
#include <RouterPlatform/Fwk/Entity.h>

#include <optional>
#include <utility>

namespace Fwk {

/// Entities by key, owned by the entity that has the collection. The key is the member's own: `T::key()`. Members are
/// ended by their last `Ptr`, not by leaving; when the owner ends, those that live on have no parent.
///
/// docs/adr/0002: why there are registered walks and `frozen()` ones.
///
/// Members are walked in insertion order as `{key, value}` with `value` a `Ptr`; the collection may change during a
/// walk in any way. Thread rule: that of the owner; only `frozen()` walks and `find` may run on several threads at
/// once.
template <class K, class T>
class EntityCollection {
  struct Policy {
    static constexpr U32 inlineCapacity = 0;
    static constexpr U32 indexAbove = defaultIndexAbove;
    static K const& key(Ptr<T> const& member) noexcept { return member->key(); }
  };
  using Table = OrderedTable<Ptr<T>, Policy>;

 public:
  using Key = K;
  using Member = T;
  /// A member, as a walk gives it.
  struct Entry {
    explicit Entry(Ptr<T> const& member) noexcept : key(member->key()), value(member) {}
    K const& key;  ///< the member's, so it lives as long as `value`
    Ptr<T> value;
  };

  EntityCollection(Entity& owner, AttrId attr) noexcept : owner_(owner), attr_(attr) {}
  EntityCollection(EntityCollection const&) = delete;
  EntityCollection& operator=(EntityCollection const&) = delete;
  ~EntityCollection() {
    for (typename Table::Walk walk(members_); !walk.atEnd(); walk.next())
      static_cast<Entity&>(*walk.element()).loseParent();
  }

  U32 size() const noexcept { return members_.size(); }
  bool empty() const noexcept { return members_.empty(); }
  bool contains(K const& key) const noexcept { return members_.contains(key); }

  /// The member, or null.
  Ptr<T> member(K const& key) const noexcept { return Ptr<T>(const_cast<T*>(find(key))); }
  /// The member without a reference to it, or null.
  T const* find(K const& key) const noexcept {
    Ptr<T> const* const found = members_.find(key);
    return found ? found->get() : nullptr;
  }
  /// Key of the member that came last, or null; valid until the collection changes.
  K const* lastKey() const noexcept {
    Ptr<T> const* const last = members_.last();
    return last ? &(*last)->key() : nullptr;
  }

  /// The member of that key. Makes it if it is not there: all defaults, parent set, then notified with the key. Throws
  /// the exceptions of the member's constructor, and std::bad_alloc, having changed nothing.
  Ptr<T> memberIs(K const& key) {
    if (Ptr<T> const* const found = members_.find(key)) return *found;
    Ptr<T> made = create<T>(key);
    members_.add(made);
    static_cast<Entity&>(*made).linkIs(&owner_, attr_);
    owner_.notify(attr_, NotificationKey::of(made->key(), MemberChange::added));
    return made;
  }

  /// Takes the member out, clears its parent, notifies with the key, and returns it. Null, and nobody notified, when it
  /// is not there.
  Ptr<T> memberDel(K const& key) {
    std::optional<Ptr<T>> const removed = members_.remove(key);
    if (!removed) return nullptr;
    static_cast<Entity&>(**removed).linkIs(nullptr, attr_);
    owner_.notify(attr_, NotificationKey::of((*removed)->key(), MemberChange::removed));
    return *removed;
  }

  /// `memberDel` for every member that is there now: one notification per member. Members that observers add meanwhile
  /// stay.
  void memberDelAll() {
    for (Entry const entry : *this) memberDel(entry.key);
  }

  using Iterator = typename Table::template CopyingIterator<Entry>;
  Iterator begin() const noexcept { return Iterator(members_); }
  std::default_sentinel_t end() const noexcept { return {}; }

  /// The members as plain references, for a reader during whose walk nothing changes: no counting, nothing registered.
  class Frozen {
   public:
    /// Stands at a member; ends with the collection's next change.
    class Iterator {
     public:
      using iterator_category = std::forward_iterator_tag;
      using value_type = T;
      using difference_type = std::ptrdiff_t;
      using pointer = T const*;
      using reference = T const&;
      Iterator() noexcept = default;
      explicit Iterator(typename Table::FrozenIterator at) noexcept : at_(at) {}
      T const& operator*() const noexcept { return **at_; }
      Iterator& operator++() noexcept {
        ++at_;
        return *this;
      }
      Iterator operator++(int) noexcept { return Iterator(at_++); }
      bool operator==(Iterator const&) const noexcept = default;

     private:
      typename Table::FrozenIterator at_;
    };
    explicit Frozen(EntityCollection const& collection) noexcept : collection_(collection) {}
    Iterator begin() const noexcept { return Iterator(collection_.members_.frozenBegin()); }
    Iterator end() const noexcept { return Iterator(collection_.members_.frozenEnd()); }

   private:
    EntityCollection const& collection_;
  };
  Frozen frozen() const noexcept { return Frozen(*this); }

 private:
  Entity& owner_;
  AttrId attr_;
  Table members_;
};

/// Values by key inside an entity; each change is notified with its key. Walked as copies, `{key, value}`, in insertion
/// order; the collection may change during a walk. Thread rule: that of the owner.
template <class K, class V>
class ValueCollection {
 public:
  using Key = K;
  using Value = V;
  using Entry = typename OrderedMap<K, V>::Entry;

  ValueCollection(Entity& owner, AttrId attr) noexcept : owner_(owner), attr_(attr) {}
  ValueCollection(ValueCollection const&) = delete;
  ValueCollection& operator=(ValueCollection const&) = delete;

  U32 size() const noexcept { return values_.size(); }
  bool empty() const noexcept { return values_.empty(); }
  bool contains(K const& key) const noexcept { return values_.contains(key); }

  /// The value of `key`, or a default one.
  V member(K const& key) const {
    V const* const found = values_.find(key);
    return found ? *found : V();
  }
  /// The value of `key`, or null; valid until the collection changes.
  V const* find(K const& key) const noexcept { return values_.find(key); }
  /// The key that came last, or null; valid until the collection changes.
  K const* lastKey() const noexcept { return values_.lastKey(); }

  /// Stores and notifies with the key, unless an equal value stands there. `key` and `value` may stand in this
  /// collection. Throws the exceptions of copying, and std::bad_alloc, having changed nothing.
  void memberIs(K const& key, V const& value) {
    std::optional<K> notified;  // a copy: observers may remove the member whose key the caller gave
    U32 const before = values_.size();
    if (!values_.set(key, value, [&] { notified.emplace(key); })) return;
    bool const added = values_.size() != before;
    owner_.notify(attr_, NotificationKey::of(*notified, added ? MemberChange::added : MemberChange::replaced));
  }

  /// Takes the value out, notifies with the key and returns it; a default value, nobody notified, when it is not there.
  V memberDel(K const& key) {
    std::optional<Entry> removed = values_.remove(key);
    if (!removed) return V();
    owner_.notify(attr_, NotificationKey::of(removed->key, MemberChange::removed));
    return std::move(removed->value);
  }

  /// `memberDel` for every key that is there now. Allocates nothing.
  void memberDelAll() {
    for (auto at = values_.begin(); at != std::default_sentinel; ++at) memberDel(at->key);
  }

  auto begin() const noexcept { return values_.begin(); }
  std::default_sentinel_t end() const noexcept { return {}; }

 private:
  Entity& owner_;
  AttrId attr_;
  OrderedMap<K, V> values_;
};

/// A set of keys inside an entity; each change is notified with its key. Walked as copies in insertion order; the set
/// may change during a walk. Thread rule: that of the owner; only `frozen()` walks and `contains` may run on several
/// threads at once.
template <class K>
class ValueSet {
  struct Policy {
    static constexpr U32 inlineCapacity = 0;
    static constexpr U32 indexAbove = defaultIndexAbove;
    static K const& key(K const& member) noexcept { return member; }
  };
  using Table = OrderedTable<K, Policy>;

 public:
  using Key = K;

  ValueSet(Entity& owner, AttrId attr) noexcept : owner_(owner), attr_(attr) {}
  ValueSet(ValueSet const&) = delete;
  ValueSet& operator=(ValueSet const&) = delete;

  U32 size() const noexcept { return keys_.size(); }
  bool empty() const noexcept { return keys_.empty(); }
  bool contains(K const& key) const noexcept { return keys_.contains(key); }
  bool member(K const& key) const noexcept { return contains(key); }
  /// The key that came last, or null; valid until the set changes.
  K const* lastKey() const noexcept { return keys_.last(); }

  /// Adds `key` and notifies with it, unless it is there.
  void memberIs(K const& key) {
    if (keys_.contains(key)) return;
    keys_.add(key);
    owner_.notify(attr_, NotificationKey::of(key, MemberChange::added));
  }

  /// Removes `key`, notifies with it if it was there, and returns whether it was.
  bool memberDel(K const& key) {
    std::optional<K> const removed = keys_.remove(key);
    if (removed) owner_.notify(attr_, NotificationKey::of(*removed, MemberChange::removed));
    return removed.has_value();
  }

  /// `memberDel` for every key that is there now. Allocates nothing.
  void memberDelAll() {
    for (auto at = begin(); at != std::default_sentinel; ++at) memberDel(*at.operator->());
  }

  using Iterator = typename Table::template CopyingIterator<>;
  Iterator begin() const noexcept { return Iterator(keys_); }
  std::default_sentinel_t end() const noexcept { return {}; }

  /// The keys as references, for a reader during whose walk nothing changes: nothing registered.
  class Frozen {
   public:
    explicit Frozen(ValueSet const& set) noexcept : set_(set) {}
    auto begin() const noexcept { return set_.keys_.frozenBegin(); }
    auto end() const noexcept { return set_.keys_.frozenEnd(); }

   private:
    ValueSet const& set_;
  };
  Frozen frozen() const noexcept { return Frozen(*this); }

 private:
  Entity& owner_;
  AttrId attr_;
  Table keys_;
};

/// A single entity, made by name, owned by the entity that has the attribute. Thread rule: that of the owner.
template <class T>
class OwnedChild {
 public:
  using Member = T;

  OwnedChild(Entity& owner, AttrId attr) noexcept : owner_(owner), attr_(attr) {}
  OwnedChild(OwnedChild const&) = delete;
  OwnedChild& operator=(OwnedChild const&) = delete;
  ~OwnedChild() {
    if (child_) static_cast<Entity&>(*child_).loseParent();
  }

  /// The child, or null.
  Ptr<T> child() const noexcept { return child_; }

  /// The child of that name. A child of another name loses its parent, a new one replaces it, and the attribute is
  /// notified without a key. Throws the exceptions of the child's constructor, and std::bad_alloc, having changed
  /// nothing.
  Ptr<T> childIs(Name const& name) {
    if (child_ && child_->name() == name) return child_;
    Ptr<T> const made = create<T>(name);  // before anything changes, since it may throw
    Ptr<T> const old = child_;
    if (old) static_cast<Entity&>(*old).linkIs(nullptr, attr_);
    static_cast<Entity&>(*made).linkIs(&owner_, attr_);
    child_ = made;
    owner_.notify(attr_);
    return made;
  }

  /// Empties the attribute, clears the child's parent, notifies, and returns the child; null when there is none.
  Ptr<T> childDel() {
    Ptr<T> const removed = std::exchange(child_, nullptr);
    if (!removed) return nullptr;
    static_cast<Entity&>(*removed).linkIs(nullptr, attr_);
    owner_.notify(attr_);
    return removed;
  }

 private:
  Entity& owner_;
  AttrId attr_;
  Ptr<T> child_;
};

}  // namespace Fwk
