#pragma once

#include <RouterPlatform/Forms/StreamCodec.h>
#include <RouterPlatform/Fwk/Collections.h>
#include <RouterPlatform/Fwk/MemberAccess.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <memory>

/// Change stream operations of a collection.
namespace Fwk::detail {

/// A walk over a collection of one of the three kinds.
template <class Collection>
class CollectionWalk final : public StreamWalk {
  using Key = typename Collection::Key;
  using Iterator = decltype(std::declval<Collection const&>().begin());

 public:
  explicit CollectionWalk(Collection const& collection) : at_(collection.begin()) {}
  bool atEnd() noexcept override {
    at_.settle();
    return at_ == std::default_sentinel;
  }
  void next() noexcept override { ++at_; }
  void putKey(OctetSink& out) const override { StreamCodec<Key>::put(out, key()); }
  void putValue(OctetSink& out) const override {
    if constexpr (requires { typename Collection::Value; })
      StreamCodec<typename Collection::Value>::put(out, at_->value);
    else
      (void)out;
  }
  Ptr<Entity> entity() const override {
    if constexpr (requires { typename Collection::Member; })
      return (*at_).value;
    else
      return nullptr;
  }

 private:
  Key const& key() const {
    if constexpr (requires { typename Collection::Member; })
      return (*at_).key;
    else if constexpr (requires { typename Collection::Value; })
      return at_->key;
    else
      return *at_.operator->();
  }

  Iterator at_;
};

/// The operations of a change stream on a collection of one of the three kinds.
template <auto member>
struct StreamOperations {
  using Collection = typename MemberPointer<decltype(member)>::Type;
  using Key = typename Collection::Key;
  static constexpr bool ofEntities = requires { typename Collection::Member; };
  static constexpr bool ofValues = requires { typename Collection::Value; };

  static bool putKey(NotificationKey const& key, OctetSink& out) {
    Key const* const typed = key.as<Key>();
    if (typed) StreamCodec<Key>::put(out, *typed);
    return typed;
  }
  static bool isLast(void const* object, NotificationKey const& key) {
    Key const* const typed = key.as<Key>();
    Key const* const last = collectionOf<member>(object).lastKey();
    return typed && last && *typed == *last;
  }
  static bool contains(void const* object, Octets octets) {
    Key key{};
    return takeWhole(octets, key) && collectionOf<member>(object).contains(key);
  }
  static Ptr<Entity> entity(void const* object, Octets octets) {
    Key key{};
    if constexpr (ofEntities)
      if (takeWhole(octets, key)) return collectionOf<member>(object).member(key);
    return nullptr;
  }
  static bool putValue(void const* object, Octets octets, OctetSink& out) {
    Key key{};
    if (ofEntities || !takeWhole(octets, key) || !collectionOf<member>(object).contains(key)) return false;
    if constexpr (ofValues) StreamCodec<typename Collection::Value>::put(out, *collectionOf<member>(object).find(key));
    return true;
  }
  static void putMemberKey(Entity const& entity, OctetSink& out) {
    if constexpr (ofEntities) StreamCodec<Key>::put(out, static_cast<typename Collection::Member const&>(entity).key());
  }
  static bool set(void* object, Octets octets, Octets valueOctets, Ptr<Entity>& made) {
    Key key{};
    if (!takeWhole(octets, key)) return false;
    if constexpr (ofValues) {
      typename Collection::Value value{};
      if (!takeWhole(valueOctets, value)) return false;
      collectionOf<member>(object).memberIs(key, value);
    } else {
      if (!valueOctets.empty()) return false;
      if constexpr (ofEntities)
        made = collectionOf<member>(object).memberIs(key);
      else
        collectionOf<member>(object).memberIs(key);
    }
    return true;
  }
  static bool del(void* object, Octets octets) {
    Key key{};
    if (!takeWhole(octets, key)) return false;
    collectionOf<member>(object).memberDel(key);
    return true;
  }
  static std::unique_ptr<StreamWalk> walk(void const* object) {
    return std::make_unique<CollectionWalk<Collection>>(collectionOf<member>(object));
  }

  static constexpr CollectionStream record{
      .ofEntities = ofEntities,
      .putKey = &putKey,
      .isLast = &isLast,
      .contains = &contains,
      .entity = &entity,
      .putValue = &putValue,
      .putMemberKey = &putMemberKey,
      .set = &set,
      .del = &del,
      .walk = &walk,
  };
};

/// Null when a key or a value has no octets.
template <class K, class V, auto member>
constexpr CollectionStream const* collectionStream() {
  if constexpr (Streamable<K> && Streamable<V>)
    return &StreamOperations<member>::record;
  else
    return nullptr;
}

}  // namespace Fwk::detail
