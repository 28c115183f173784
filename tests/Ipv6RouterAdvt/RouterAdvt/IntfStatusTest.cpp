#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::IntfStatus;
using RouterAdvt::Name;
using RouterAdvt::ProcFileDirDataSet;

TEST(IntfStatus, HasTheAttributesOfItsTableWithTheirNumbers) {
  using T = IntfStatus;
  char const* const fileSet = "RouterAdvt::ProcFileDirDataSet";
  AttributeRow const rows[] = {
      {258, T::intfIdAttr, "intfId", AttributeKind::key, "IntfId", "Ethernet1"},
      {259, T::cfgProcFileDataAttr, "cfgProcFileData", AttributeKind::child, fileSet, nullptr},
      {260, T::nbrProcFileDataAttr, "nbrProcFileData", AttributeKind::child, fileSet, nullptr},
  };
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  EXPECT_STREQ(T::typeRecord().name, "RouterAdvt::IntfStatus");
  expectAttributes(intf->fwkType(), Fwk::objectRef(*intf), rows);
}

TEST(IntfStatus, NameIsEmptyAndItsIdentityIsItsIntfId) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  EXPECT_TRUE(intf->name().empty());
  EXPECT_EQ(intf->intfId(), "Ethernet1");
  EXPECT_EQ(intf->keyText(), "Ethernet1");
}

TEST(IntfStatus, StartsWithNeitherFileSet) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  EXPECT_EQ(intf->cfgProcFileData(), nullptr);
  EXPECT_EQ(intf->nbrProcFileData(), nullptr);
}

/// One of the two file sets, and the other.
struct FileSetRow {
  char const* name;
  AttrId attr;
  Ptr<ProcFileDirDataSet> (IntfStatus::*get)() const;
  Ptr<ProcFileDirDataSet> (IntfStatus::*set)(Name const&);
  Ptr<ProcFileDirDataSet> (IntfStatus::*del)();
  Ptr<ProcFileDirDataSet> (IntfStatus::*other)() const;
  friend void PrintTo(FileSetRow const& r, std::ostream* os) { *os << r.name; }
};
FileSetRow const fileSetRows[] = {
    {"cfgProcFileData", 259, &IntfStatus::cfgProcFileData, &IntfStatus::cfgProcFileDataIs,
     &IntfStatus::cfgProcFileDataDel, &IntfStatus::nbrProcFileData},
    {"nbrProcFileData", 260, &IntfStatus::nbrProcFileData, &IntfStatus::nbrProcFileDataIs,
     &IntfStatus::nbrProcFileDataDel, &IntfStatus::cfgProcFileData},
};

struct IntfStatusFileSet : testing::TestWithParam<FileSetRow> {
  Ptr<IntfStatus> intf = IntfStatus::IntfStatusIs("Ethernet1");
  Changes changes{*intf};
  ChangeList const one{Change{GetParam().attr}};

  auto get() const { return ((*intf).*GetParam().get)(); }
  auto set(char const* name) { return ((*intf).*GetParam().set)(name); }
  auto del() { return ((*intf).*GetParam().del)(); }
  auto other() const { return ((*intf).*GetParam().other)(); }
};
INSTANTIATE_TEST_SUITE_P(All, IntfStatusFileSet, testing::ValuesIn(fileSetRows),
                         [](auto const& row) { return row.param.name; });

TEST_P(IntfStatusFileSet, IsMadeEmptyUnderTheInterfaceAndToldOnce) {
  auto const made = set("files");
  EXPECT_EQ(changes.take(), one);
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(get(), made);
  EXPECT_EQ(made->name(), "files");
  EXPECT_EQ(made->parent(), intf);
  EXPECT_EQ(made->parentAttrName(), GetParam().name);
  EXPECT_TRUE(made->fileData().empty());
  EXPECT_TRUE(made->hasNotificationActive());
}

TEST_P(IntfStatusFileSet, OfTheCurrentNameStaysWithItsFiles) {
  auto const made = set("files");
  made->fileDataIs("a", "x");
  changes.take();
  EXPECT_EQ(set("files"), made);
  EXPECT_EQ(get(), made);
  EXPECT_EQ(made->fileData("a"), "x");
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_P(IntfStatusFileSet, OfAnotherNameIsNewAndEmptyAndTheOldOneLosesItsParent) {
  auto const old = set("files");
  old->fileDataIs("a", "x");
  changes.take();
  auto const made = set("others");
  EXPECT_EQ(changes.take(), one);
  EXPECT_NE(made, old);
  EXPECT_EQ(get(), made);
  EXPECT_EQ(made->name(), "others");
  EXPECT_EQ(made->parent(), intf);
  EXPECT_TRUE(made->fileData().empty());
  EXPECT_EQ(old->parent(), nullptr);
  EXPECT_EQ(old->fileData("a"), "x");
}

TEST_P(IntfStatusFileSet, IsInPlaceWhenObserversAreTold) {
  std::vector<std::string> seen;
  Changes const looking(*intf, [&](Fwk::Notification const&) {
    auto const present = get();
    EXPECT_TRUE(!present || present->parent() == intf);
    seen.push_back(present ? present->name().toString() : "none");
  });
  set("files");
  set("others");
  del();
  EXPECT_EQ(seen, (std::vector<std::string>{"files", "others", "none"}));
}

TEST_P(IntfStatusFileSet, DeletedTwiceIsReturnedOnceAndToldOnce) {
  auto const made = set("files");
  made->fileDataIs("a", "x");
  changes.take();
  auto const removed = del();
  EXPECT_EQ(removed, made);
  EXPECT_EQ(changes.take(), one);
  EXPECT_EQ(get(), nullptr);
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_EQ(removed->fileData("a"), "x");
  EXPECT_EQ(del(), nullptr);
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_P(IntfStatusFileSet, NeverChangesTheOtherOne) {
  set("files");
  EXPECT_EQ(other(), nullptr);
  auto const otherSet = GetParam().attr == 259 ? intf->nbrProcFileDataIs("files") : intf->cfgProcFileDataIs("files");
  otherSet->fileDataIs("a", "x");
  EXPECT_NE(otherSet, get());
  set("others");
  EXPECT_EQ(other(), otherSet);
  del();
  EXPECT_EQ(other(), otherSet);
  EXPECT_EQ(otherSet->parent(), intf);
  EXPECT_EQ(otherSet->fileData("a"), "x");
}

TEST_P(IntfStatusFileSet, OfTheEmptyNameIsOneLikeAnyOther) {
  auto const made = set("");
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(set(""), made);
  EXPECT_NE(set("files"), made);
}

TEST_P(IntfStatusFileSet, ChangesOfItsFilesAreNotChangesOfTheInterface) {
  auto const made = set("files");
  changes.take();
  made->fileDataIs("a", "x");
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST_P(IntfStatusFileSet, OutlivesTheInterfaceWithoutAParent) {
  auto const before = liveCount<ProcFileDirDataSet>();
  Ptr<IntfStatus> ending = IntfStatus::IntfStatusIs("Ethernet2");
  auto const made = ((*ending).*GetParam().set)("files");
  ending = nullptr;
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_EQ(liveCount<ProcFileDirDataSet>(), before + 1);
}

TEST_P(IntfStatusFileSet, IsReachedThroughReflection) {
  auto const& record = *IntfStatus::typeRecord().attribute(GetParam().attr)->child;
  auto const object = Fwk::objectRef(*intf);
  EXPECT_EQ(record.get(object.object), nullptr);
  auto const made = record.set(object.object, "files");
  EXPECT_EQ(made, get());
  EXPECT_EQ(record.get(object.object), made);
  EXPECT_EQ(record.set(object.object, std::string(Name::maxSize + 1, 'n')), nullptr);
  EXPECT_EQ(record.del(object.object), made);
  EXPECT_EQ(get(), nullptr);
}

}  // namespace
