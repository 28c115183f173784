#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::ProcFileDirDataSet;
using RouterAdvt::String;

struct ProcFileDirDataSetTest : testing::Test {
  Ptr<ProcFileDirDataSet> files = RouterAdvt::procFileDirDataSetFactory("files");
  Changes changes{*files};

  static Change changeOf(char const* fileName) { return {258, fileName}; }
};

TEST_F(ProcFileDirDataSetTest, HasTheAttributesOfItsTableWithTheirNumbers) {
  AttributeRow const rows[] = {
      {258, ProcFileDirDataSet::fileDataAttr, "fileData", AttributeKind::collection, "String", nullptr}};
  EXPECT_STREQ(ProcFileDirDataSet::typeRecord().name, "RouterAdvt::ProcFileDirDataSet");
  EXPECT_STREQ(ProcFileDirDataSet::typeRecord().attribute("fileData")->collection->keyTypeName, "String");
  expectAttributes(files->fwkType(), Fwk::objectRef(*files), rows);
}

TEST_F(ProcFileDirDataSetTest, IsIdentifiedByItsNameAndEmptyAtFirst) {
  EXPECT_EQ(files->name(), "files");
  EXPECT_EQ(files->parent(), nullptr);
  EXPECT_TRUE(files->fileData().empty());
  EXPECT_EQ(files->fileData("a"), "");
}

TEST_F(ProcFileDirDataSetTest, TheSameContentsTwiceTellOnceAndOtherContentsOnceMore) {
  files->fileDataIs("a", "x");
  files->fileDataIs("a", "x");
  EXPECT_EQ(changes.take(), ChangeList{changeOf("a")});
  files->fileDataIs("a", "y");
  EXPECT_EQ(changes.take(), ChangeList{changeOf("a")});
  EXPECT_EQ(files->fileData("a"), "y");
}

TEST_F(ProcFileDirDataSetTest, ObserversFindTheNewContentsAndAreGivenTheFileName) {
  std::vector<std::string> seen;
  Changes const looking(*files, [&](Fwk::Notification const& told) {
    String const* const key = told.key.as<String>();
    ASSERT_NE(key, nullptr);
    seen.push_back(files->fileData(*key));
  });
  files->fileDataIs("a", "x");
  files->fileDataIs("a", "y");
  files->fileDataDel("a");
  EXPECT_EQ(seen, (std::vector<std::string>{"x", "y", ""}));
}

TEST_F(ProcFileDirDataSetTest, AnEmptyFileIsNotAnAbsentOne) {
  files->fileDataIs("a", "");
  EXPECT_EQ(changes.take(), ChangeList{changeOf("a")}) << "inserting is a change although an absent file reads alike";
  EXPECT_TRUE(files->fileData().contains("a"));
  EXPECT_EQ(files->fileDataDel("a"), "");
  EXPECT_EQ(changes.take(), ChangeList{changeOf("a")});
}

TEST_F(ProcFileDirDataSetTest, FileNamesAreComparedExactly) {
  files->fileDataIs("a", "x");
  files->fileDataIs("A", "y");
  files->fileDataIs("", "z");
  EXPECT_EQ(files->fileData("a"), "x");
  EXPECT_EQ(files->fileData("A"), "y");
  EXPECT_EQ(files->fileData(""), "z");
  EXPECT_EQ(files->fileData().size(), 3u);
}

TEST_F(ProcFileDirDataSetTest, DeletingReturnsTheContentsAndTells) {
  files->fileDataIs("a", "x");
  changes.take();
  EXPECT_EQ(files->fileDataDel("a"), "x");
  EXPECT_EQ(changes.take(), ChangeList{changeOf("a")});
  EXPECT_FALSE(files->fileData().contains("a"));
}

TEST_F(ProcFileDirDataSetTest, DeletingAnAbsentFileReturnsTheEmptyStringAndTellsNobody) {
  files->fileDataIs("a", "x");
  changes.take();
  EXPECT_EQ(files->fileDataDel("b"), "");
  EXPECT_EQ(changes.take(), ChangeList{});
  EXPECT_EQ(files->fileData("a"), "x");
}

TEST_F(ProcFileDirDataSetTest, DeletingAllTellsOncePerFile) {
  for (char const* const fileName : {"c", "a", "b"}) files->fileDataIs(fileName, "x");
  changes.take();
  files->fileDataDelAll();
  EXPECT_EQ(changes.take(), (ChangeList{changeOf("c"), changeOf("a"), changeOf("b")}));
  EXPECT_TRUE(files->fileData().empty());
}

TEST_F(ProcFileDirDataSetTest, ContentsAreAnyOctets) {
  String const contents(std::string("\0line\n\xff", 7));
  files->fileDataIs("a", contents);
  EXPECT_EQ(files->fileData("a"), contents);
}

TEST_F(ProcFileDirDataSetTest, TheFilesAreReadAndChangedThroughReflection) {
  auto const use = [&](Fwk::CollectionView const& view) {
    EXPECT_TRUE(view.set("a", "x"));
    EXPECT_EQ(view.size(), 1u);
    EXPECT_TRUE(view.get("a", [](Fwk::MemberRef const& member) { EXPECT_EQ(member.text, "x"); }));
    EXPECT_EQ(view.get("b", [](Fwk::MemberRef const&) {}).error, Fwk::ReflectionError::noSuchMember);
    EXPECT_TRUE(view.delAll());
  };
  EXPECT_TRUE(Fwk::reflectCollection(Fwk::objectRef(*files), "fileData", use));
  EXPECT_EQ(changes.take(), (ChangeList{changeOf("a"), changeOf("a")}));
}

}  // namespace
