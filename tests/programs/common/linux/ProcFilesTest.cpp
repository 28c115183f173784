#include <RouterPlatform/Fwk/Observe.h>
#include <programs/common/linux/ProcFiles.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tool {

namespace {

struct ProcFilesTest : testing::Test {
  ToolTest::TemporaryFolder folder;
  ProcFiles files{folder / "."};
  Fwk::Ptr<RouterAdvt::IntfStatus> status = RouterAdvt::IntfStatus::IntfStatusIs("eth0");

  std::vector<std::string> namesOf(Fwk::Ptr<RouterAdvt::ProcFileDirDataSet> const& set) const {
    std::vector<std::string> names;
    for (auto const& [name, contents] : set->fileData()) names.push_back(name);
    return names;
  }
};

TEST_F(ProcFilesTest, GoIntoTheSetOfTheirDirectoryAsTheyAre) {
  folder.write("conf/eth0/mtu", "1500\n");
  folder.write("conf/eth0/empty", "");
  folder.write("neigh/eth0/mcast_solicit", "3\n");
  files.capture(*status);
  ASSERT_TRUE(status->cfgProcFileData() && status->nbrProcFileData());
  EXPECT_EQ(status->cfgProcFileData()->name(), folder / "." + "/conf/eth0");
  EXPECT_THAT(namesOf(status->cfgProcFileData()), testing::ElementsAre("empty", "mtu"));
  EXPECT_EQ(status->cfgProcFileData()->fileData("mtu"), "1500\n");
  EXPECT_THAT(namesOf(status->nbrProcFileData()), testing::ElementsAre("mcast_solicit"));
}

TEST_F(ProcFilesTest, OfAnInterfaceThatIsNotThereAreNone) {
  files.capture(*status);
  EXPECT_FALSE(status->cfgProcFileData());
  EXPECT_FALSE(status->nbrProcFileData());
}

TEST_F(ProcFilesTest, GoWithTheirInterface) {
  folder.write("conf/eth0/mtu", "1500\n");
  files.capture(*status);
  std::filesystem::remove_all(folder / "conf/eth0");
  files.capture(*status);
  EXPECT_FALSE(status->cfgProcFileData());
}

TEST_F(ProcFilesTest, ThatAreAsTheyWereTellNobody) {
  folder.write("conf/eth0/mtu", "1500\n");
  folder.write("conf/eth0/forwarding", "0\n");
  files.capture(*status);
  std::vector<std::string> heard;
  auto const observing = Fwk::observe(status->cfgProcFileData(),
                                      [&](Fwk::Notification const& n) { n.key.appendTo(heard.emplace_back()); });
  files.capture(*status);
  EXPECT_THAT(heard, testing::IsEmpty());
  folder.write("conf/eth0/mtu", "1280\n");
  std::filesystem::remove(folder / "conf/eth0/forwarding");
  folder.write("conf/eth0/accept_ra", "1\n");
  files.capture(*status);
  EXPECT_THAT(heard, testing::UnorderedElementsAre("mtu", "forwarding", "accept_ra"));
}

TEST_F(ProcFilesTest, ThatCannotBeReadAreLeftOut) {
  folder.write("conf/eth0/mtu", "1500\n");
  folder.write("conf/eth0/folder/file", "");
  folder.write("conf/eth0/large", std::string(1 << 20, 'x'));
  std::filesystem::create_symlink("nowhere", folder / "conf/eth0/link");
  files.capture(*status);
  EXPECT_THAT(namesOf(status->cfgProcFileData()), testing::ElementsAre("mtu"));
}

TEST_F(ProcFilesTest, StayWhenTheirDirectoryCannotBeRead) {
  folder.write("conf/eth0/mtu", "1500\n");
  files.capture(*status);
  std::filesystem::remove_all(folder / "conf/eth0");
  std::filesystem::create_symlink("eth0", folder / "conf/eth0");  // ELOOP, for root as for anybody
  files.capture(*status);
  ASSERT_TRUE(status->cfgProcFileData());
  EXPECT_THAT(namesOf(status->cfgProcFileData()), testing::ElementsAre("mtu"));
}

struct NoInterfaceRow {
  char const* name;
  char const* intf;
  friend void PrintTo(NoInterfaceRow const& r, std::ostream* os) { *os << r.name; }
};
class ProcFilesOfNoInterface : public testing::TestWithParam<NoInterfaceRow> {};
INSTANTIATE_TEST_SUITE_P(Row, ProcFilesOfNoInterface,
                         testing::Values(NoInterfaceRow{"All", "all"}, NoInterfaceRow{"Default", "default"},
                                         NoInterfaceRow{"Empty", ""}, NoInterfaceRow{"Dot", "."},
                                         NoInterfaceRow{"DotDot", ".."}, NoInterfaceRow{"AWayOut", "../secret"}),
                         [](auto const& row) { return row.param.name; });

TEST_P(ProcFilesOfNoInterface, AreNotLookedFor) {
  ToolTest::TemporaryFolder const folder;
  for (char const* const file : {"conf/all/f", "conf/default/f", "conf/f", "secret/f", "f"}) folder.write(file, "x");
  auto const status = RouterAdvt::IntfStatus::IntfStatusIs(GetParam().intf);
  ProcFiles(folder / ".").capture(*status);
  EXPECT_FALSE(status->cfgProcFileData());
}

}  // namespace

}  // namespace Tool
