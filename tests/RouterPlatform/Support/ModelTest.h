#pragma once

#include <RouterPlatform/Forms/TextCodec.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/Reflection.h>
#include <RouterPlatform/Net/Ip6AddrWithMask.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// What the tests of models share: of their types, whatever they are.
namespace ModelTest {

using Fwk::AttributeKind;
using Fwk::AttrId;
using Fwk::Ptr;
using Fwk::S64;

inline Net::Ip6AddrWithMask prefixOf(char const* text) { return Net::Ip6AddrWithMask(text); }
inline Net::Ip6Addr addrOf(char const* text) { return Net::Ip6Addr(text); }

/// One line of a type's table of attributes.
struct AttributeRow {
  AttrId id;
  int enumerator;  ///< the same number, as the type's own enumeration has it
  char const* name;
  AttributeKind kind;
  char const* typeName;
  char const* text;  ///< plain text when the object is new; null: it has none
  bool settable = false;
};

/// A number without a descriptor.
inline AttributeRow unreflectedRow(AttrId id, int enumerator, char const* name) {
  return {id, enumerator, name, AttributeKind::computed, nullptr, nullptr};
}

/// Expects that `type` has exactly these attributes, in this order, and that the new `object` reads as they say.
void expectAttributes(Fwk::TypeRecord const& type, Fwk::ObjectRef object, std::span<AttributeRow const> rows);

/// Everything stored in `object`, by attribute name: texts, sizes of collections, names of children.
std::map<std::string, std::string> snapshot(Fwk::ConstObjectRef object);

/// One notification.
struct Change {
  AttrId attr;
  std::optional<std::string> key = std::nullopt;  ///< plain text

  bool operator==(Change const&) const = default;
  friend void PrintTo(Change const& change, std::ostream* os) {
    *os << change.attr << (change.key ? " with key " + *change.key : " without key");
  }
};
using ChangeList = std::vector<Change>;

/// Writes down every change of an entity; `whenTold`, if given, runs inside each notification.
class Changes {
 public:
  explicit Changes(Fwk::Entity& entity, std::function<void(Fwk::Notification const&)> whenTold = {});

  /// What was told since the last call.
  ChangeList take() { return std::exchange(list_, {}); }

 private:
  ChangeList list_;
  Fwk::Subscription subscription_;
};

template <class T>
S64 liveCount() {
  return T::typeRecord().liveCount->value();
}

/// Plain text of an attribute; nothing when reflection has none.
inline std::optional<std::string> readText(Fwk::ConstObjectRef object, AttrId attr) {
  std::string text;
  if (!Fwk::readAttribute(object, attr, text)) return std::nullopt;
  return text;
}

/// Stored attributes of `object` that differ between two snapshots.
std::vector<std::string> changedBetween(std::map<std::string, std::string> const& before,
                                        std::map<std::string, std::string> const& after);

template <class V>
std::string plainText(V const& value) {
  std::string text;
  Fwk::TextCodec<V>::append(text, value);
  return text;
}

/// Expects of a scalar attribute of an entity: `fresh` at the start; storing what is there tells nobody; storing
/// `other` stores exactly that, touches no other attribute and tells once, after it is stored, without a key. The same
/// through reflection. Leaves `fresh` behind.
template <class T, class V, class Argument>
void expectSetter(Ptr<T> const& entity, AttrId attr, char const* name, V (T::*get)() const, void (T::*set)(Argument),
                  std::remove_cvref_t<V> const& fresh, std::remove_cvref_t<V> const& other) {
  SCOPED_TRACE(name);
  Fwk::ObjectRef const object = Fwk::objectRef(*entity);
  auto const before = snapshot(object);
  int sawStored = 0;
  Changes changes(*entity, [&](Fwk::Notification const&) { sawStored += ((*entity).*get)() == other; });

  EXPECT_EQ(((*entity).*get)(), fresh);
  ((*entity).*set)(fresh);
  EXPECT_EQ(changes.take(), ChangeList{}) << "storing what is there";

  ((*entity).*set)(other);
  EXPECT_EQ(changes.take(), ChangeList{Change{attr}});
  EXPECT_EQ(sawStored, 1) << "observers read the new value";
  EXPECT_EQ(((*entity).*get)(), other);
  EXPECT_EQ(changedBetween(before, snapshot(object)), std::vector<std::string>{name});

  ((*entity).*set)(other);
  EXPECT_EQ(changes.take(), ChangeList{}) << "storing what is there";

  EXPECT_TRUE(Fwk::setAttribute(object, attr, plainText(fresh)));
  EXPECT_EQ(((*entity).*get)(), fresh);
  EXPECT_TRUE(Fwk::setAttribute(object, name, plainText(other)));
  EXPECT_EQ(((*entity).*get)(), other);
  EXPECT_TRUE(Fwk::setAttribute(object, name, plainText(fresh)));
  EXPECT_EQ(changes.take(), (ChangeList{Change{attr}, Change{attr}, Change{attr}}));
  EXPECT_EQ(snapshot(object), before);
}

/// The same of an attribute of a value type, which tells nobody; `other` makes the value unequal.
template <class T, class V, class Argument>
void expectValueSetter(T value, char const* name, V (T::*get)() const, void (T::*set)(Argument),
                       std::remove_cvref_t<V> const& fresh, std::remove_cvref_t<V> const& other) {
  SCOPED_TRACE(name);
  T const original = value;
  Fwk::ObjectRef const object{&value, &T::typeRecord()};
  auto const before = snapshot(object);

  EXPECT_EQ((value.*get)(), fresh);
  (value.*set)(other);
  EXPECT_EQ((value.*get)(), other);
  EXPECT_EQ(changedBetween(before, snapshot(object)), std::vector<std::string>{name});
  EXPECT_FALSE(value == original);
  EXPECT_TRUE(value != original);

  EXPECT_TRUE(Fwk::setAttribute(object, name, plainText(fresh)));
  EXPECT_EQ((value.*get)(), fresh);
  EXPECT_TRUE(value == original);
}

}  // namespace ModelTest
