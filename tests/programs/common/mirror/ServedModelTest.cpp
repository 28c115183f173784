#include <RouterPlatform/Fwk/Observe.h>
#include <programs/common/mirror/ServedModel.h>
#include <programs/common/text/Failure.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <sys/stat.h>

#include <new>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Tool {

namespace {

using Reload = ServedModel::Reload;

struct ServedModelTest : testing::Test {
  ToolTest::TemporaryFolder folder;
  std::string const file = folder.write("ra.yaml", "config: {intf: {E1: {raLifetime: 600}, E2: {}}}");
  std::ostringstream err;
  ServedModel model{file, err, ProcFiles(folder / "proc")};

  Reload reload(std::string const& text) {
    folder.write("ra.yaml", text);
    return model.reload(err);
  }
  std::vector<std::string> interfaces() const {
    std::vector<std::string> names;
    for (auto const& [intfId, intf] : model.status()->intf()) names.push_back(intfId.toString());
    return names;
  }
};

TEST_F(ServedModelTest, HoldsWhatTheFileSays) {
  ASSERT_TRUE(model.config()->intf("E1"));
  EXPECT_EQ(model.config()->intf("E1")->raLifetime(), 600u);
  EXPECT_THAT(model.roots(), testing::SizeIs(2));
  EXPECT_THAT(interfaces(), testing::ElementsAre("E1", "E2"));
}

TEST_F(ServedModelTest, AFileThatIsWrongFromTheStartFails) {
  folder.write("wrong.yaml", "config: {hopLimt: 3}");
  EXPECT_THROW(ServedModel(folder / "wrong.yaml", err), Failure);
  EXPECT_THROW(ServedModel(folder / "none.yaml", err), Failure);
}

TEST_F(ServedModelTest, AChangedFileChangesTheTreesThatAreThere) {
  auto const config = model.config();
  auto const intf = config->intf("E1");
  int told = 0;
  auto const observing = Fwk::observe(intf, [&](Fwk::Notification const&) { ++told; });
  EXPECT_EQ(reload("config: {intf: {E1: {raLifetime: 700}, E3: {}}}"), Reload::applied);
  EXPECT_EQ(model.config(), config);
  EXPECT_EQ(config->intf("E1"), intf);
  EXPECT_EQ(intf->raLifetime(), 700u);
  EXPECT_EQ(told, 1);
  EXPECT_THAT(interfaces(), testing::ElementsAre("E1", "E3"));
  EXPECT_EQ(err.str(), "");
}

TEST_F(ServedModelTest, AnInterfaceThatComesFirstLeavesTheOthersAlone) {
  std::vector<std::string> heard;
  auto const observing =
      Fwk::observe(model.config(), [&](Fwk::Notification const& n) { n.key.appendTo(heard.emplace_back()); });
  auto const intf = model.config()->intf("E1");
  EXPECT_EQ(reload("config: {intf: {E0: {}, E2: {}, E1: {raLifetime: 600}}}"), Reload::applied);
  EXPECT_THAT(heard, testing::ElementsAre("E0"));
  EXPECT_EQ(model.config()->intf("E1"), intf);
  EXPECT_THAT(interfaces(), testing::ElementsAre("E1", "E2", "E0"));
}

TEST_F(ServedModelTest, TheOrderOfWhatIsAdvertisedIsTakenOver) {
  reload("config: {intf: {E1: {dnsServers: {'2001:db8::1': {}, '2001:db8::2': {}}}}}");
  reload("config: {intf: {E1: {dnsServers: {'2001:db8::2': {}, '2001:db8::1': {}}}}}");
  std::vector<std::string> servers;
  for (auto const& [address, server] : model.config()->intf("E1")->dnsServers()) servers.push_back(address.toString());
  EXPECT_THAT(servers, testing::ElementsAre("2001:db8::2", "2001:db8::1"));
}

TEST_F(ServedModelTest, AnUnchangedFileIsNotReadAgain) {
  EXPECT_EQ(model.reload(err), Reload::unchanged);
  EXPECT_EQ(reload("config: {intf: {E1: {raLifetime: 600}, E2: {}}}"), Reload::unchanged);
}

TEST_F(ServedModelTest, AFileThatIsWrongIsRefusedAndTold) {
  EXPECT_EQ(reload("config: {intf: {E1: {raLifetme: 700}}}"), Reload::refused);
  EXPECT_THAT(err.str(), testing::StartsWith(file + ":1:22: config/intf[E1]/raLifetme: there is no such attribute"));
  EXPECT_EQ(model.config()->intf("E1")->raLifetime(), 600u);
  EXPECT_THAT(interfaces(), testing::ElementsAre("E1", "E2"));
}

TEST_F(ServedModelTest, AWrongFileIsToldOnce) {
  reload("config: {hopLimt: 3}");
  err.str("");
  EXPECT_EQ(model.reload(err), Reload::unchanged);
  EXPECT_EQ(err.str(), "");
}

TEST_F(ServedModelTest, AFileThatIsGoneIsRefusedAndOneThatIsBackIsTaken) {
  std::filesystem::remove(file);
  EXPECT_EQ(model.reload(err), Reload::refused);
  EXPECT_EQ(err.str(), file + ": cannot be opened: No such file or directory\n");
  EXPECT_EQ(model.reload(err), Reload::unchanged);
  EXPECT_EQ(reload("config: {intf: {E1: {raLifetime: 600}, E2: {}}}"), Reload::applied);
}

TEST_F(ServedModelTest, AFileThatCannotBeAppliedIsToldAndAppliedAgain) {
  std::string const tooLargeForARecord(17'000'000, 'x');
  std::string const text = "config: {intf: {E1: {raLifetime: 700, networkBootFileUrl: '" + tooLargeForARecord + "'}}}";
  EXPECT_EQ(reload(text), Reload::interrupted);
  EXPECT_THAT(err.str(), testing::HasSubstr("ra.yaml: cannot be applied: a record is too large\n"));
  EXPECT_EQ(reload(text), Reload::interrupted);
  EXPECT_EQ(reload("config: {intf: {E1: {raLifetime: 800}}}"), Reload::applied);
  EXPECT_EQ(model.config()->intf("E1")->raLifetime(), 800u);
  EXPECT_THAT(interfaces(), testing::ElementsAre("E1"));
}

TEST_F(ServedModelTest, AFileIsAppliedAfterMemoryRanOutForAMomentWhileItWasRead) {
  Reload first = Reload::refused;
  int refused = 0;
  for (std::size_t allowed = 0; first != Reload::applied; ++allowed) {
    std::size_t const raLifetime = 1000 + allowed;
    folder.write("ra.yaml", "config: {intf: {E1: {raLifetime: " + std::to_string(raLifetime) + "}}}");
    {
      AllocationFailure const failure(allowed, 1);
      first = model.reload(err);
    }
    if (first == Reload::applied) break;
    if (first == Reload::refused) ++refused;
    ASSERT_EQ(model.reload(err), Reload::applied) << allowed;
    ASSERT_EQ(model.config()->intf("E1")->raLifetime(), raLifetime);
  }
  EXPECT_GT(refused, 20);
  EXPECT_THAT(err.str(), testing::HasSubstr("ra.yaml: cannot be read: std::bad_alloc\n"));
}

TEST_F(ServedModelTest, AFileIsAppliedAfterThereWasNoMemoryForAMessage) {
  int thrown = 0;
  for (std::size_t allowed = 0; allowed < 40; ++allowed) {
    std::size_t const raLifetime = 1000 + allowed;
    folder.write("ra.yaml", "config: {intf: {E1: {raLifetime: " + std::to_string(raLifetime) + "}}}");
    try {
      AllocationFailure const failure(allowed);
      model.reload(err);
    } catch (std::bad_alloc const&) {
      ++thrown;
    }
    ASSERT_EQ(model.reload(err), Reload::applied) << allowed;
    ASSERT_EQ(model.config()->intf("E1")->raLifetime(), raLifetime);
  }
  EXPECT_GT(thrown, 20);
}

TEST_F(ServedModelTest, MemoryThatRunsOutIsToldOncePerText) {
  auto const reloadWithLittleMemory = [&](std::string const& text) {
    folder.write("ra.yaml", text);
    AllocationFailure const failure(20, 1);
    return model.reload(err);
  };
  EXPECT_EQ(reloadWithLittleMemory("config: {intf: {E1: {raLifetime: 700}}}"), Reload::refused);
  EXPECT_EQ(reloadWithLittleMemory("config: {intf: {E1: {raLifetime: 700}}}"), Reload::unchanged);
  EXPECT_EQ(err.str(), file + ": cannot be read: std::bad_alloc\n");
  EXPECT_EQ(reloadWithLittleMemory("config: {intf: {E1: {raLifetime: 800}}}"), Reload::refused);
  EXPECT_EQ(err.str(), file + ": cannot be read: std::bad_alloc\n" + file + ": cannot be read: std::bad_alloc\n");
}

TEST_F(ServedModelTest, WarningsAreTold) {
  EXPECT_EQ(reload("config: {intf: {E1: {}}}\nlinks: {E2: {}}"), Reload::applied);
  EXPECT_THAT(err.str(), testing::HasSubstr("warning: links[E2]: "));
}

TEST_F(ServedModelTest, WarningsAreToldFromTheStart) {
  folder.write("ra.yaml", "config: {intf: {E1: {}}}\nlinks: {E2: {}}");
  ServedModel const other(file, err, ProcFiles(folder / "proc"));
  EXPECT_THAT(err.str(), testing::HasSubstr("warning: links[E2]: "));
}

TEST_F(ServedModelTest, AFifoInTheFilesPlaceIsRefusedAndNotWaitedFor) {
  std::filesystem::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(model.reload(err), Reload::refused);
  EXPECT_EQ(err.str(), file + ": is not a regular file\n");
  EXPECT_THROW(ServedModel(file, err), Failure);
}

TEST_F(ServedModelTest, AFolderInTheFilesPlaceIsRefused) {
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  EXPECT_EQ(model.reload(err), Reload::refused);
  EXPECT_EQ(err.str(), file + ": is not a regular file\n");
}

TEST_F(ServedModelTest, CapturesTheFilesOfEveryInterfaceInRounds) {
  std::string text = "config: {intf: {";
  for (int i = 0; i < 250; ++i) text += "E" + std::to_string(i) + ": {}, ";
  reload(text + "}}");
  folder.write("proc/conf/E0/mtu", "1500\n");
  folder.write("proc/conf/E249/mtu", "1280\n");
  int calls = 1;
  while (!model.captureSome()) ++calls;
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(model.status()->intf("E0")->cfgProcFileData()->fileData("mtu"), "1500\n");
  EXPECT_EQ(model.status()->intf("E249")->cfgProcFileData()->fileData("mtu"), "1280\n");
  EXPECT_FALSE(model.status()->intf("E1")->cfgProcFileData());
}

TEST_F(ServedModelTest, AnInterfaceThatGoesDuringARoundIsPassedOver) {
  EXPECT_TRUE(model.captureSome());
  reload("config: {}");
  EXPECT_TRUE(model.captureSome());
}

}  // namespace

}  // namespace Tool
