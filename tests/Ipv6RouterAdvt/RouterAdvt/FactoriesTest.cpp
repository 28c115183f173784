#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

namespace {

using namespace ModelTest;
using namespace RouterAdvt;

/// A function that makes an entity on its own.
struct MakerRow {
  char const* name;
  Fwk::TypeRecord const& type;
  char const* key;
  Ptr<Fwk::Entity> (*make)();
  friend void PrintTo(MakerRow const& r, std::ostream* os) { *os << r.name; }
};
MakerRow const makerRows[] = {
    {"configFactory", Config::typeRecord(), "ra", []() -> Ptr<Fwk::Entity> { return configFactory("ra"); }},
    {"intfConfigFactory", IntfConfig::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return intfConfigFactory("Ethernet1"); }},
    {"statusFactory", Status::typeRecord(), "status", []() -> Ptr<Fwk::Entity> { return statusFactory("status"); }},
    {"intfStatusFactory", IntfStatus::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return intfStatusFactory("Ethernet1"); }},
    {"procFileDirDataSetFactory", ProcFileDirDataSet::typeRecord(), "files",
     []() -> Ptr<Fwk::Entity> { return procFileDirDataSetFactory("files"); }},
    {"routerNeighborStatusFactory", RouterNeighborStatus::typeRecord(), "routers",
     []() -> Ptr<Fwk::Entity> { return routerNeighborStatusFactory("routers"); }},
    {"routerNeighborsFactory", RouterNeighbors::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return routerNeighborsFactory("Ethernet1"); }},
    {"routerNeighborRaStatusFactory", Table::RouterNeighborRaStatus::typeRecord(), "table",
     []() -> Ptr<Fwk::Entity> { return Table::routerNeighborRaStatusFactory("table"); }},
    {"IntfConfigIs", IntfConfig::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return IntfConfig::IntfConfigIs("Ethernet1"); }},
    {"PrefixConfigEntryIs", PrefixConfigEntry::typeRecord(), "2001:db8::/64",
     []() -> Ptr<Fwk::Entity> { return PrefixConfigEntry::PrefixConfigEntryIs(prefixOf("2001:db8::/64")); }},
    {"PrefixProfileEntryIs", PrefixProfileEntry::typeRecord(), "guest",
     []() -> Ptr<Fwk::Entity> { return PrefixProfileEntry::PrefixProfileEntryIs("guest"); }},
    {"DNSServerConfigEntryIs", DNSServerConfigEntry::typeRecord(), "2001:db8::53",
     []() -> Ptr<Fwk::Entity> { return DNSServerConfigEntry::DNSServerConfigEntryIs(addrOf("2001:db8::53")); }},
    {"DNSSuffixConfigEntryIs", DNSSuffixConfigEntry::typeRecord(), "example.com",
     []() -> Ptr<Fwk::Entity> { return DNSSuffixConfigEntry::DNSSuffixConfigEntryIs("example.com"); }},
    {"IntfStatusIs", IntfStatus::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return IntfStatus::IntfStatusIs("Ethernet1"); }},
    {"ProcFileDirDataSetIs", ProcFileDirDataSet::typeRecord(), "files",
     []() -> Ptr<Fwk::Entity> { return ProcFileDirDataSet::ProcFileDirDataSetIs("files"); }},
    {"RouterNeighborsIs", RouterNeighbors::typeRecord(), "Ethernet1",
     []() -> Ptr<Fwk::Entity> { return RouterNeighbors::RouterNeighborsIs("Ethernet1"); }},
    {"createOfRaPacketStatus", RaPacketStatus::typeRecord(), "packets",
     []() -> Ptr<Fwk::Entity> { return Fwk::create<RaPacketStatus>("packets"); }},
};

struct MakerOfAnEntity : testing::TestWithParam<MakerRow> {};
INSTANTIATE_TEST_SUITE_P(All, MakerOfAnEntity, testing::ValuesIn(makerRows),
                         [](auto const& row) { return row.param.name; });

TEST_P(MakerOfAnEntity, ReturnsTheOnlyReferenceToANewEntityOfItsTypeAndKey) {
  auto const made = GetParam().make();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(&made->fwkType(), &GetParam().type);
  EXPECT_EQ(made->keyText(), GetParam().key);
  EXPECT_EQ(made->references(), 1u);
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_NE(GetParam().make(), made);
}

TEST_P(MakerOfAnEntity, LeavesNotificationActive) {
  auto const made = GetParam().make();
  EXPECT_TRUE(made->hasNotificationActive());
  made->hasNotificationActiveIs(false);
  Changes changes(*made);
  made->notify(258);
  EXPECT_EQ(changes.take(), ChangeList{});
  made->hasNotificationActiveIs(true);
  made->notify(258);
  EXPECT_EQ(changes.take(), ChangeList{Change{258}});
}

TEST_P(MakerOfAnEntity, CountsTheInstanceWhileItLives) {
  auto const before = GetParam().type.liveCount->value();
  auto made = GetParam().make();
  auto const another = GetParam().make();
  EXPECT_EQ(GetParam().type.liveCount->value(), before + 2);
  made = nullptr;
  EXPECT_EQ(GetParam().type.liveCount->value(), before + 1);
}

TEST_P(MakerOfAnEntity, MakesWhatTheTypesRecordMakesFromTheKeysText) {
  auto const made = GetParam().make();
  auto const fromText = GetParam().type.create(GetParam().key);
  ASSERT_NE(fromText, nullptr);
  EXPECT_TRUE(fromText->hasNotificationActive());
  EXPECT_EQ(fromText->references(), 1u);
  EXPECT_EQ(snapshot(Fwk::objectRef(*fromText)), snapshot(Fwk::objectRef(*made)));
}

TEST(Factories, GiveNoEntityForATextThatIsNoKey) {
  auto const before = liveCount<PrefixConfigEntry>();
  EXPECT_EQ(PrefixConfigEntry::typeRecord().create("2001:db8::/129"), nullptr);
  EXPECT_EQ(DNSServerConfigEntry::typeRecord().create("example.com"), nullptr);
  EXPECT_EQ(IntfConfig::typeRecord().create(std::string(IntfId::maxSize + 1, 'e')), nullptr);
  EXPECT_EQ(Config::typeRecord().create(std::string(Name::maxSize + 1, 'n')), nullptr);
  EXPECT_EQ(liveCount<PrefixConfigEntry>(), before);
}

}  // namespace
