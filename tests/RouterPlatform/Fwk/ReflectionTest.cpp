#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/Reflection.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Fwk::CollectionView;
using Fwk::MemberRef;
using Fwk::Notification;
using Fwk::Ptr;
using Fwk::ReflectionError;
using Fwk::ReflectionResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestModel::Bag;
using TestModel::Box;
using TestModel::Point;
using TestModel::Port;

class Reflection : public testing::Test {
 protected:
  template <class Attr>
  std::string read(Attr attr) {
    std::string out;
    ReflectionResult const result = Fwk::readAttribute(ref(), attr, out);
    return result ? out : "error: " + result.text;
  }
  ReflectionError set(std::string_view attr, std::string_view text) {
    ReflectionResult const result = Fwk::setAttribute(ref(), attr, text);
    EXPECT_EQ(result.text.empty(), static_cast<bool>(result));
    return result.error;
  }
  /// What `use` gives for the collection.
  template <class Use>
  auto with(std::string_view attr, Use use) {
    decltype(use(std::declval<CollectionView const&>())) value{};
    EXPECT_TRUE(Fwk::reflectCollection(ref(), attr, [&](CollectionView const& view) { value = use(view); }));
    return value;
  }
  std::vector<std::string> keys(std::string_view attr) {
    return with(attr, [](CollectionView const& view) {
      std::vector<std::string> found;
      view.forEach([&](MemberRef const& member) {
        found.push_back(member.key);
        return true;
      });
      return found;
    });
  }
  Fwk::ObjectRef ref() { return objectRef(*box_); }

  Ptr<Box> box_ = Fwk::create<Box>("box");
};

struct ScalarRow {
  char const* name;
  Fwk::AttrId id;
  char const* first;
  char const* another;
  friend void PrintTo(ScalarRow const& row, std::ostream* os) { *os << row.name; }
};
class ReflectedScalar : public Reflection, public testing::WithParamInterface<ScalarRow> {};
INSTANTIATE_TEST_SUITE_P(Rows, ReflectedScalar,
                         testing::Values(ScalarRow{"flag", Box::flagAttr, "true", "false"},
                                         ScalarRow{"number", Box::numberAttr, "0", "4294967295"},
                                         ScalarRow{"small", Box::smallAttr, "0", "255"},
                                         ScalarRow{"ratio", Box::ratioAttr, "0", "12.5"},
                                         ScalarRow{"text", Box::textAttr, "", "a 'text'"},
                                         ScalarRow{"colour", Box::colourAttr, "red", "green"},
                                         ScalarRow{"prefix", Box::prefixAttr, "::/0", "2001:db8::/64"}));

TEST_P(ReflectedScalar, IsReadAndSetByNumberAndByName) {
  ScalarRow const& row = GetParam();
  std::string const first = read(row.name);
  EXPECT_EQ(read(row.id), first);
  EXPECT_EQ(set(row.name, row.another), ReflectionError::none);
  EXPECT_EQ(read(row.id), row.another);
  EXPECT_TRUE(Fwk::setAttribute(ref(), row.id, first));
  EXPECT_EQ(read(row.name), first);
  if (row.id != Box::ratioAttr) {
    EXPECT_EQ(first, row.first);
  }
}

TEST_P(ReflectedScalar, NotifiesLikeAnyOtherSetter) {
  int notified = 0;
  auto const subscription = Fwk::observe(box_, [&](Notification const& n) {
    EXPECT_EQ(n.attr, GetParam().id);
    ++notified;
  });
  set(GetParam().name, GetParam().another);
  EXPECT_EQ(notified, 1);
  set(GetParam().name, GetParam().another);
  EXPECT_EQ(notified, 1);
}

TEST_F(Reflection, ReadsTheBaseAttributes) {
  Ptr<Port> const port = box_->portsIs("Ethernet1");
  auto const readPort = [&](Fwk::AttrId attr) {
    std::string out;
    EXPECT_TRUE(Fwk::readAttribute(objectRef(*port), attr, out));
    return out;
  };
  EXPECT_EQ(readPort(253), "");
  EXPECT_EQ(readPort(254), "box/ports[Ethernet1]");
  EXPECT_EQ(readPort(255), "box");
  EXPECT_EQ(readPort(256), "ports");
  EXPECT_EQ(readPort(257), "box/ports[Ethernet1]");
  EXPECT_EQ(read("name"), "box");
  EXPECT_EQ(read("parent"), "");
}

TEST_F(Reflection, ReadsKeysConstantsAndComputedAttributes) {
  box_->numberIs(21);
  EXPECT_EQ(read("flagDefault"), "true");
  EXPECT_EQ(read("twice"), "42");
  std::string out;
  EXPECT_TRUE(Fwk::readAttribute(objectRef(*box_->portsIs("Ethernet1")), "intfId", out));
  EXPECT_EQ(out, "Ethernet1");
}

TEST_F(Reflection, ReadingAppends) {
  std::string out = "number ";
  EXPECT_TRUE(Fwk::readAttribute(ref(), "number", out));
  EXPECT_EQ(out, "number 0");
}

TEST_F(Reflection, WhatIsNotThereIsAnErrorThatNamesIt) {
  for (std::string_view const name : {"hidden", "nothing", ""}) {
    std::string out = "as it was";
    ReflectionResult const result = Fwk::readAttribute(ref(), name, out);
    EXPECT_EQ(result.error, ReflectionError::noSuchAttribute);
    EXPECT_EQ(result.text, "no attribute TestModel::Box::" + std::string(name));
    EXPECT_EQ(out, "as it was");
    EXPECT_EQ(set(name, "1"), ReflectionError::noSuchAttribute);
  }
  for (Fwk::AttrId const id : {Fwk::AttrId{0}, Fwk::AttrId{Box::hiddenAttr}, Fwk::AttrId{0xffff}}) {
    std::string out;
    EXPECT_EQ(Fwk::readAttribute(ref(), id, out).error, ReflectionError::noSuchAttribute);
    EXPECT_EQ(Fwk::setAttribute(ref(), id, "1").text, "no attribute TestModel::Box::" + std::to_string(id));
  }
}

TEST_F(Reflection, WhatHasNoTextIsNotReadable) {
  for (std::string_view const name : {"point", "scaled", "ports", "labels", "addresses", "disk"}) {
    std::string out;
    ReflectionResult const result = Fwk::readAttribute(ref(), name, out);
    EXPECT_EQ(result.error, ReflectionError::notReadable);
    EXPECT_EQ(result.text, "not readable as text: TestModel::Box::" + std::string(name));
  }
}

TEST_F(Reflection, ReadsAComputedAttributeForAnArgument) {
  box_->numberIs(21);
  std::string out = "scaled ";
  EXPECT_TRUE(Fwk::readAttribute(ref(), "scaled", "3", out));
  EXPECT_TRUE(Fwk::readAttribute(ref(), Box::scaledAttr, "2", out));
  EXPECT_EQ(out, "scaled 6342");
  EXPECT_STREQ(Box::typeRecord().attribute("scaled")->argumentTypeName, "U32");
}

TEST_F(Reflection, AWrongArgumentIsAnErrorAndReadsNothing) {
  std::string out = "as it was";
  EXPECT_EQ(Fwk::readAttribute(ref(), "scaled", "x", out).error, ReflectionError::malformed);
  EXPECT_EQ(Fwk::readAttribute(ref(), "scaled", "", out).error, ReflectionError::malformed);
  EXPECT_EQ(Fwk::readAttribute(ref(), "scaled", "4294967296", out).error, ReflectionError::outOfRange);
  EXPECT_EQ(Fwk::readAttribute(ref(), "nothing", "1", out).error, ReflectionError::noSuchAttribute);
  ReflectionResult const result = Fwk::readAttribute(ref(), "number", "1", out);
  EXPECT_EQ(result.error, ReflectionError::notReadable);
  EXPECT_EQ(result.text, "takes no argument: TestModel::Box::number");
  EXPECT_EQ(out, "as it was");
}

TEST_F(Reflection, OnlyAReferenceIsReadAsOne) {
  Ptr<Fwk::Entity> entity;
  ReflectionResult const result = Fwk::readReference(ref(), "disk", entity);
  EXPECT_EQ(result.error, ReflectionError::notReadable);
  EXPECT_EQ(result.text, "not a reference: TestModel::Box::disk");
  EXPECT_EQ(Fwk::readReference(ref(), Fwk::AttrId{0}, entity).error, ReflectionError::noSuchAttribute);
}

TEST_F(Reflection, ReachesTheCollectionOfAValueThatMayChange) {
  TestModel::Bag bag;
  bag.marksIs(7, true);
  Fwk::U64 size = 0;
  EXPECT_TRUE(
      Fwk::reflectCollection(Fwk::objectRef(bag), "marks", [&](CollectionView const& marks) { size = marks.size(); }));
  EXPECT_EQ(size, 1U);
}

TEST_F(Reflection, WhatIsFixedIsNotSettable) {
  for (std::string_view const name : {"name", "parent", "flagDefault", "twice", "scaled", "point", "ports", "disk"})
    EXPECT_EQ(set(name, "1"), ReflectionError::notSettable) << name;
  EXPECT_EQ(Fwk::setAttribute(objectRef(*box_->portsIs("Ethernet1")), "intfId", "Ethernet2").text,
            "not settable: TestModel::Port::intfId");
}

TEST_F(Reflection, ATextThatIsNotOfTheTypeIsMalformedAndChangesNothing) {
  box_->prefixIs(Net::Ip6AddrWithMask("2001:db8::/64"));
  int notified = 0;
  auto const subscription = Fwk::observe(box_, [&](Notification const&) { ++notified; });
  for (auto const& [name, text] : {std::pair("flag", "1"), std::pair("number", "-1"), std::pair("ratio", "x"),
                                   std::pair("colour", "blue"), std::pair("prefix", "2001:db8::/129")})
    EXPECT_EQ(set(name, text), ReflectionError::malformed) << name;
  EXPECT_EQ(Fwk::setAttribute(ref(), "number", "ten").text, "\"ten\" is not a valid U32");
  EXPECT_EQ(notified, 0);
  EXPECT_EQ(read("prefix"), "2001:db8::/64");
}

TEST_F(Reflection, ANumberThatDoesNotFitIsOutOfRangeAndChangesNothing) {
  EXPECT_EQ(set("number", "4294967296"), ReflectionError::outOfRange);
  EXPECT_EQ(set("small", "256"), ReflectionError::outOfRange);
  EXPECT_EQ(set("ratio", "1e999"), ReflectionError::outOfRange);
  EXPECT_EQ(Fwk::setAttribute(ref(), "small", "256").text, "\"256\" is out of range for U8");
  EXPECT_EQ(read("number"), "0");
}

TEST_F(Reflection, VisitsTheAttributesOfAValueRecord) {
  box_->pointIs(Point(3, 4));
  std::string out;
  Fwk::AttributeRecord const* const attr = Box::typeRecord().attribute("point");
  ASSERT_NE(attr->visit, nullptr);
  attr->visit(ref().object, [&](Fwk::ConstObjectRef point) {
    EXPECT_EQ(point.type, &Point::typeRecord());
    EXPECT_TRUE(Fwk::readAttribute(point, "x", out));
    EXPECT_TRUE(Fwk::readAttribute(point, 259, out));
    EXPECT_EQ(Fwk::readAttribute(point, "name", out).error, ReflectionError::noSuchAttribute);
  });
  EXPECT_EQ(out, "34");
}

TEST_F(Reflection, OnlyACollectionIsReflectedAsOne) {
  auto const fail = [](CollectionView const&) { FAIL(); };
  EXPECT_EQ(Fwk::reflectCollection(ref(), "number", fail).error, ReflectionError::notACollection);
  EXPECT_EQ(Fwk::reflectCollection(ref(), Box::diskAttr, fail).text, "not a collection: TestModel::Box::disk");
  EXPECT_EQ(Fwk::reflectCollection(ref(), "nothing", fail).error, ReflectionError::noSuchAttribute);
  EXPECT_EQ(Fwk::reflectCollection(ref(), Fwk::AttrId{1}, fail).error, ReflectionError::noSuchAttribute);
}

TEST_F(Reflection, ACollectionIsReflectedByNumberToo) {
  box_->portsIs("Ethernet1");
  Fwk::U64 size = 0;
  EXPECT_TRUE(Fwk::reflectCollection(ref(), Box::portsAttr, [&](CollectionView const& view) { size = view.size(); }));
  EXPECT_EQ(size, 1U);
}

class ReflectedCollection : public Reflection {};

TEST_F(ReflectedCollection, OfEntitiesMakesFindsAndDeletesMembersByPlainText) {
  with("ports", [&](CollectionView const& view) {
    EXPECT_TRUE(view.set("Ethernet2"));
    EXPECT_TRUE(view.set("Ethernet1"));
    EXPECT_TRUE(view.set("Ethernet1"));
    EXPECT_EQ(view.size(), 2U);
    EXPECT_TRUE(view.contains("Ethernet1"));
    EXPECT_FALSE(view.contains("Ethernet3"));
    EXPECT_EQ(view.entity("Ethernet1"), box_->ports("Ethernet1"));
    EXPECT_EQ(view.entity("Ethernet3"), nullptr);
    EXPECT_TRUE(view.get("Ethernet1", [&](MemberRef const& member) {
      EXPECT_EQ(member.key, "Ethernet1");
      EXPECT_EQ(member.entity, box_->ports("Ethernet1"));
      EXPECT_EQ(member.value.type, &Port::typeRecord());
    }));
    EXPECT_TRUE(view.del("Ethernet2"));
    EXPECT_EQ(view.del("Ethernet2").error, ReflectionError::noSuchMember);
    EXPECT_EQ(view.del("Ethernet2").text, "no member \"Ethernet2\"");
    return 0;
  });
  EXPECT_THAT(keys("ports"), ElementsAre("Ethernet1"));
}

TEST_F(ReflectedCollection, OfEntitiesNotifiesLikeItsMutators) {
  std::vector<TestModel::Change> changes;
  auto const subscription =
      Fwk::observe(box_, [&](Notification const& n) { changes.push_back(TestModel::changeOf(n)); });
  with("ports", [](CollectionView const& view) {
    view.set("Ethernet1");
    view.set("Ethernet1");
    view.delAll();
    return 0;
  });
  EXPECT_THAT(changes, ElementsAre(TestModel::Change{Box::portsAttr, "Ethernet1"},
                                   TestModel::Change{Box::portsAttr, "Ethernet1"}));
}

TEST_F(ReflectedCollection, RefusesATextThatIsNoKey) {
  std::string const tooLong(32, 'x');
  with("ports", [&](CollectionView const& view) {
    EXPECT_EQ(view.set(tooLong).error, ReflectionError::malformed);
    EXPECT_EQ(view.del(tooLong).error, ReflectionError::malformed);
    EXPECT_EQ(view.get(tooLong, [](MemberRef const&) { FAIL(); }).error, ReflectionError::malformed);
    EXPECT_FALSE(view.contains(tooLong));
    return 0;
  });
  with("addresses", [](CollectionView const& view) {
    EXPECT_EQ(view.set("2001:db8::/64").text, "\"2001:db8::/64\" is not a valid Ip6Addr");
    return 0;
  });
  with("points", [](CollectionView const& view) {
    EXPECT_EQ(view.del("4294967296").error, ReflectionError::outOfRange);
    return 0;
  });
  EXPECT_THAT(keys("ports"), IsEmpty());
}

TEST_F(ReflectedCollection, OfValuesSetsAndReadsThemAsText) {
  with("labels", [&](CollectionView const& view) {
    EXPECT_TRUE(view.set("colour", "red"));
    EXPECT_TRUE(view.set("colour", "green"));
    EXPECT_TRUE(view.set("size"));
    EXPECT_TRUE(view.get("colour", [](MemberRef const& member) {
      EXPECT_EQ(member.text, "green");
      EXPECT_EQ(member.entity, nullptr);
      EXPECT_EQ(member.value.object, nullptr);
    }));
    EXPECT_STREQ(view.record().keyTypeName, "String");
    EXPECT_STREQ(view.record().memberTypeName, "String");
    EXPECT_TRUE(view.del("size"));
    EXPECT_EQ(view.get("size", [](MemberRef const&) { FAIL(); }).error, ReflectionError::noSuchMember);
    return 0;
  });
  EXPECT_EQ(box_->labels("colour"), "green");
  EXPECT_THAT(keys("labels"), ElementsAre("colour"));
}

TEST_F(ReflectedCollection, OfValueRecordsShowsTheirAttributesAndIsNotSetFromText) {
  box_->pointsIs(7, Point(1, 2));
  with("points", [&](CollectionView const& view) {
    EXPECT_EQ(&view.record().memberType(), &Point::typeRecord());
    EXPECT_TRUE(view.get("7", [](MemberRef const& member) {
      std::string out;
      EXPECT_TRUE(Fwk::readAttribute(member.value, "y", out));
      EXPECT_EQ(out, "2");
    }));
    EXPECT_EQ(view.set("8", "1").error, ReflectionError::notSettable);
    EXPECT_EQ(view.set("8", "1").text, "not settable: TestModel::Box::points");
    EXPECT_TRUE(view.del("7"));
    return 0;
  });
  EXPECT_TRUE(box_->points().empty());
}

TEST_F(ReflectedCollection, OfASetHoldsKeysAlone) {
  with("addresses", [&](CollectionView const& view) {
    EXPECT_TRUE(view.set("2001:db8::1"));
    EXPECT_TRUE(view.contains("2001:DB8:0::1"));
    EXPECT_STREQ(view.record().memberTypeName, "");
    EXPECT_EQ(view.record().memberKind, Fwk::ValueKind::none);
    EXPECT_TRUE(view.get("2001:db8::1", [](MemberRef const& member) { EXPECT_EQ(member.text, ""); }));
    EXPECT_TRUE(view.del("2001:db8::1"));
    EXPECT_EQ(view.del("2001:db8::1").error, ReflectionError::noSuchMember);
    return 0;
  });
}

TEST_F(ReflectedCollection, InsideAValueTypeIsReadOnly) {
  Bag bag;
  bag.marksIs(5, true);
  bag.marksIs(3, false);
  std::string seen;
  EXPECT_TRUE(Fwk::reflectCollection({&bag, &Bag::typeRecord()}, "marks", [&](CollectionView const& view) {
    view.forEach([&](MemberRef const& member) {
      seen += member.key + '=' + member.text + ' ';
      return true;
    });
    EXPECT_EQ(view.set("5", "false").error, ReflectionError::notSettable);
    EXPECT_EQ(view.del("5").error, ReflectionError::notSettable);
    EXPECT_EQ(view.delAll().error, ReflectionError::notSettable);
    EXPECT_EQ(view.size(), 2U);
  }));
  EXPECT_EQ(seen, "5=true 3=false ");
}

TEST_F(ReflectedCollection, IsWalkedInOrderUntilTheVisitorHasEnough) {
  for (char const* const key : {"c", "a", "b"}) {
    box_->portsIs(key);
    box_->labelsIs(key, key);
  }
  EXPECT_THAT(keys("ports"), ElementsAre("c", "a", "b"));
  EXPECT_THAT(keys("labels"), ElementsAre("c", "a", "b"));
  int visited = 0;
  with("ports", [&](CollectionView const& view) {
    view.forEach([&](MemberRef const&) { return ++visited < 2; });
    return 0;
  });
  EXPECT_EQ(visited, 2);
}

TEST_F(ReflectedCollection, MayBeEmptiedByItsVisitor) {
  for (char const* const key : {"a", "b", "c"}) box_->portsIs(key);
  int visited = 0;
  with("ports", [&](CollectionView const& view) {
    view.forEach([&](MemberRef const&) {
      view.delAll();
      ++visited;
      return true;
    });
    return 0;
  });
  EXPECT_EQ(visited, 1);
}

TEST_F(Reflection, MakesReadsAndDeletesAChild) {
  Ptr<Fwk::Entity> child;
  EXPECT_TRUE(Fwk::readChild(ref(), "disk", child));
  EXPECT_EQ(child, nullptr);
  EXPECT_EQ(Fwk::deleteChild(ref(), "disk").error, ReflectionError::noSuchMember);
  EXPECT_TRUE(Fwk::setChild(ref(), "disk", "root", child));
  EXPECT_EQ(child, box_->disk());
  EXPECT_EQ(child->name(), "root");
  Ptr<Fwk::Entity> read;
  EXPECT_TRUE(Fwk::readChild(ref(), "disk", read));
  EXPECT_EQ(read, child);
  EXPECT_TRUE(Fwk::deleteChild(ref(), "disk"));
  EXPECT_EQ(box_->disk(), nullptr);
}

TEST_F(Reflection, MakesReadsAndDeletesAChildByNumberToo) {
  Ptr<Fwk::Entity> child;
  EXPECT_TRUE(Fwk::setChild(ref(), Box::diskAttr, "root", child));
  EXPECT_EQ(child, box_->disk());
  Ptr<Fwk::Entity> read;
  EXPECT_TRUE(Fwk::readChild(ref(), Box::diskAttr, read));
  EXPECT_EQ(read, child);
  EXPECT_TRUE(Fwk::deleteChild(ref(), Box::diskAttr));
  EXPECT_EQ(Fwk::deleteChild(ref(), Box::diskAttr).text, "empty: TestModel::Box::disk");
  EXPECT_EQ(Fwk::readChild(ref(), Fwk::AttrId{1}, read).text, "no attribute TestModel::Box::1");
  EXPECT_EQ(Fwk::setChild(ref(), Box::portsAttr, "x", child).error, ReflectionError::notAChild);
}

TEST_F(Reflection, OnlyAChildIsReflectedAsOneAndOnlyByAName) {
  Ptr<Fwk::Entity> child;
  EXPECT_EQ(Fwk::readChild(ref(), "ports", child).error, ReflectionError::notAChild);
  EXPECT_EQ(Fwk::setChild(ref(), "number", "x", child).text, "not a child: TestModel::Box::number");
  EXPECT_EQ(Fwk::deleteChild(ref(), "nothing").error, ReflectionError::noSuchAttribute);
  ReflectionResult const result = Fwk::setChild(ref(), "disk", std::string(64, 'x'), child);
  EXPECT_EQ(result.error, ReflectionError::malformed);
  EXPECT_THAT(result.text, HasSubstr("is not a valid Name"));
  EXPECT_EQ(box_->disk(), nullptr);
}

}  // namespace
