#include <RouterPlatform/Fwk/TypeRecord.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Fwk::AttributeKind;
using Fwk::AttributeRecord;
using Fwk::LiveCount;
using Fwk::TypeRecord;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Bag;
using TestModel::Box;
using TestModel::Disk;
using TestModel::Point;
using TestModel::Port;

TEST(LiveCount, CountsUpAndDown) {
  LiveCount count;
  EXPECT_EQ(count.value(), 0);
  count.add();
  EXPECT_EQ(count.value(), 1);
  count.drop();
  EXPECT_EQ(count.value(), 0);
}

TEST(AttributeKindName, IsAWordForEachKind) {
  std::vector<std::string> names;
  for (auto const kind : {AttributeKind::key, AttributeKind::scalar, AttributeKind::constant, AttributeKind::computed,
                          AttributeKind::collection, AttributeKind::child})
    names.emplace_back(attributeKindName(kind));
  EXPECT_THAT(names, ElementsAre("key", "scalar", "constant", "computed", "collection", "child"));
}

TEST(TypeRecord, NumbersAttributesInTheOrderOfDeclaration) {
  auto const attributes = Box::typeRecord().attributes;
  ASSERT_EQ(attributes.size(), std::size_t{Box::diskAttr} - Box::flagAttr + 1);
  for (std::size_t i = 0; i < attributes.size(); ++i) EXPECT_EQ(attributes[i].id, 258 + i) << attributes[i].name;
  EXPECT_STREQ(Box::typeRecord().attribute(Box::numberAttr)->name, "number");
  EXPECT_STREQ(Box::typeRecord().attribute(Box::diskAttr)->name, "disk");
}

TEST(TypeRecord, FindsOwnAndBaseAttributesByNumberAndByName) {
  TypeRecord const& type = Box::typeRecord();
  EXPECT_EQ(type.attribute("number"), type.attribute(Box::numberAttr));
  EXPECT_EQ(type.attribute("fullName"), type.attribute(Fwk::fullNameAttr));
  EXPECT_EQ(type.attribute("fullName")->id, 254);
}

TEST(TypeRecord, DoesNotFindWhatIsNotThere) {
  TypeRecord const& type = Box::typeRecord();
  for (int const id : {0, 252, Box::diskAttr + 1, 0xffff})
    EXPECT_EQ(type.attribute(static_cast<Fwk::AttrId>(id)), nullptr) << id;
  for (char const* const name : {"", "numbe", "numbers", "Number", "number "})
    EXPECT_EQ(type.attribute(name), nullptr) << name;
}

TEST(TypeRecord, AnUnreflectedAttributeHasItsNumberAndIsNotFound) {
  TypeRecord const& type = Box::typeRecord();
  EXPECT_EQ(type.attribute(Box::hiddenAttr), nullptr);
  EXPECT_EQ(type.attribute("hidden"), nullptr);
  EXPECT_STREQ(type.attributes[Box::hiddenAttr - Fwk::firstOwnAttr].name, "hidden");
  EXPECT_STREQ(type.attribute(Box::hiddenAttr + 1)->name, "scaled");
}

TEST(TypeRecord, OnlyATypeIdentifiedByAnotherKeyHasAKeyAttribute) {
  EXPECT_STREQ(Port::typeRecord().keyAttribute()->name, "intfId");
  EXPECT_EQ(Box::typeRecord().keyAttribute(), nullptr);
  EXPECT_EQ(Disk::typeRecord().keyAttribute(), nullptr);
  EXPECT_EQ(Point::typeRecord().keyAttribute(), nullptr);
}

TEST(TypeRecord, AValueTypeHasNoBaseAttributes) {
  EXPECT_THAT(Point::typeRecord().baseAttributes(), IsEmpty());
  EXPECT_EQ(Point::typeRecord().attribute("name"), nullptr);
  EXPECT_EQ(Point::typeRecord().attribute(Fwk::nameAttr), nullptr);
  EXPECT_STREQ(Point::typeRecord().attribute(258)->name, "x");
}

struct KindRow {
  char const* name;
  AttributeKind kind;
  char const* typeName;
  bool readable;
  bool settable;
  friend void PrintTo(KindRow const& row, std::ostream* os) { *os << row.name; }
};
class AttributeOfBox : public testing::TestWithParam<KindRow> {};
INSTANTIATE_TEST_SUITE_P(Rows, AttributeOfBox,
                         testing::Values(KindRow{"name", AttributeKind::computed, "Name", true, false},
                                         KindRow{"flag", AttributeKind::scalar, "bool", true, true},
                                         KindRow{"flagDefault", AttributeKind::constant, "bool", true, false},
                                         KindRow{"number", AttributeKind::scalar, "U32", true, true},
                                         KindRow{"small", AttributeKind::scalar, "U8", true, true},
                                         KindRow{"ratio", AttributeKind::scalar, "double", true, true},
                                         KindRow{"text", AttributeKind::scalar, "String", true, true},
                                         KindRow{"colour", AttributeKind::scalar, "TestModel::Colour", true, true},
                                         KindRow{"prefix", AttributeKind::scalar, "Ip6AddrWithMask", true, true},
                                         KindRow{"point", AttributeKind::scalar, "TestModel::Point", false, false},
                                         KindRow{"twice", AttributeKind::computed, "U32", true, false},
                                         KindRow{"scaled", AttributeKind::computed, "U32", false, false},
                                         KindRow{"ports", AttributeKind::collection, "TestModel::Port", false, false},
                                         KindRow{"labels", AttributeKind::collection, "String", false, false},
                                         KindRow{"points", AttributeKind::collection, "TestModel::Point", false, false},
                                         KindRow{"addresses", AttributeKind::collection, "Ip6Addr", false, false},
                                         KindRow{"disk", AttributeKind::child, "TestModel::Disk", false, false}));

TEST_P(AttributeOfBox, HasItsKindAndTypeAndCanBeReadAndSetAsItsKindSays) {
  AttributeRecord const* const attr = Box::typeRecord().attribute(GetParam().name);
  ASSERT_NE(attr, nullptr);
  EXPECT_EQ(attr->kind, GetParam().kind);
  EXPECT_STREQ(attr->typeName, GetParam().typeName);
  EXPECT_EQ(attr->readable(), GetParam().readable);
  EXPECT_EQ(attr->settable(), GetParam().settable);
}

TEST(EntityTypeRecord, MakesAnEntityFromThePlainTextOfItsKey) {
  Fwk::Ptr<Fwk::Entity> const port = Port::typeRecord().create("Ethernet1");
  ASSERT_TRUE(port);
  EXPECT_EQ(Fwk::ptrCast<Port>(port)->intfId(), "Ethernet1");
  EXPECT_TRUE(port->hasNotificationActive());
  EXPECT_EQ(Box::typeRecord().create("box")->name(), "box");
}

TEST(EntityTypeRecord, MakesNothingFromATextThatIsNoKey) {
  Fwk::S64 const alive = Port::typeRecord().liveCount->value();
  EXPECT_EQ(Port::typeRecord().create(std::string(32, 'x')), nullptr);
  EXPECT_EQ(Box::typeRecord().create(std::string(64, 'x')), nullptr);
  EXPECT_THROW(Port::typeRecord().create("broken"), std::runtime_error);
  EXPECT_EQ(Port::typeRecord().liveCount->value(), alive);
}

TEST(ValueTypeRecord, ConstructsAssignsComparesAndDestructs) {
  Fwk::ValueTypeRecord const& type = *Bag::typeRecord().value;
  EXPECT_EQ(type.size, sizeof(Bag));
  EXPECT_EQ(type.alignment, alignof(Bag));
  std::size_t const storage = liveAllocationCount();
  alignas(Bag) std::byte room[sizeof(Bag)];
  type.construct(room);
  {
    Bag bag;
    EXPECT_TRUE(type.equal(room, &bag));
    bag.marksIs(1, true);
    EXPECT_FALSE(type.equal(room, &bag));
    type.assign(room, &bag);
    EXPECT_TRUE(type.equal(room, &bag));
  }
  type.destruct(room);
  EXPECT_EQ(liveAllocationCount(), storage);
}

TEST(ValueTypeRecord, HashesTypesThatAreKeysOnly) {
  Point const point(1, 2);
  ASSERT_NE(Point::typeRecord().value->hash, nullptr);
  EXPECT_EQ(Point::typeRecord().value->hash(&point, 5), point.hash(5));
  EXPECT_EQ(Bag::typeRecord().value->hash, nullptr);
}

TEST(ValueTypeRecord, PrintsAndReadsTheTextForm) {
  Point const point(1, 2);
  Fwk::ValueTypeRecord const& type = *Point::typeRecord().value;
  EXPECT_EQ(type.text(&point), "Value('TestModel::Point', ** {'x': 1, 'y': 2})");
  Point read;
  type.parse(type.text(&point), &read);
  EXPECT_EQ(read, point);
  EXPECT_THROW(type.parse("Value('TestModel::Point', ** {'x': 4294967296, 'y': 2})", &read), Fwk::ParseError);
  EXPECT_EQ(read, point);
}

}  // namespace
