#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using RouterAdvt::Status;
using RouterAdvt::statusFactory;

TEST(Status, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  AttributeRow const rows[] = {
      {258, Status::intfAttr, "intf", AttributeKind::collection, "RouterAdvt::IntfStatus", nullptr},
      {259, Status::routerAdvtDaemonActiveAttr, "routerAdvtDaemonActive", AttributeKind::scalar, "bool", "false", true},
  };
  auto const status = statusFactory("status");
  EXPECT_STREQ(Status::typeRecord().name, "RouterAdvt::Status");
  EXPECT_STREQ(Status::typeRecord().attribute("intf")->collection->keyTypeName, "IntfId");
  expectAttributes(status->fwkType(), Fwk::objectRef(*status), rows);
}

TEST(Status, IsMadeInactiveAndWithoutInterfaces) {
  auto const status = statusFactory("status");
  EXPECT_EQ(status->name(), "status");
  EXPECT_EQ(status->parent(), nullptr);
  EXPECT_FALSE(status->routerAdvtDaemonActive());
  EXPECT_TRUE(status->intf().empty());
}

TEST(Status, SettingTheDaemonActiveTellsOnlyWhenItChanges) {
  auto const status = statusFactory("status");
  status->intfIs("Ethernet1");
  expectSetter(status, 259, "routerAdvtDaemonActive", &Status::routerAdvtDaemonActive,
               &Status::routerAdvtDaemonActiveIs, false, true);
}

TEST(Status, AnInterfaceThatIsThereIsReturnedWithItsFileSets) {
  auto const status = statusFactory("status");
  auto const intf = status->intfIs("Ethernet1");
  auto const set = intf->cfgProcFileDataIs("cfg");
  Changes changes(*status);
  EXPECT_EQ(status->intfIs("Ethernet1"), intf);
  EXPECT_EQ(intf->cfgProcFileData(), set);
  EXPECT_EQ(changes.take(), ChangeList{});
}

TEST(Status, ARemovedInterfaceKeepsItsFileSetsAttached) {
  auto const status = statusFactory("status");
  status->intfIs("Ethernet1")->cfgProcFileDataIs("cfg")->fileDataIs("a", "x");
  auto const removed = status->intfDel("Ethernet1");
  EXPECT_EQ(removed->parent(), nullptr);
  ASSERT_NE(removed->cfgProcFileData(), nullptr);
  EXPECT_EQ(removed->cfgProcFileData()->parent(), removed);
  EXPECT_EQ(removed->cfgProcFileData()->fileData("a"), "x");
}

TEST(Status, TheFullNameIsThePathFromTheRoot) {
  auto const status = statusFactory("status");
  auto const intf = status->intfIs("Ethernet1");
  EXPECT_EQ(intf->fullName(), "status/intf[Ethernet1]");
  EXPECT_EQ(intf->cfgProcFileDataIs("cfg")->fullName(), "status/intf[Ethernet1]/cfgProcFileData[cfg]");
}

}  // namespace
