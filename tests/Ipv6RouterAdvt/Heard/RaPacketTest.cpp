#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

namespace {

using namespace ModelTest;
using RouterAdvt::IntfId;
using RouterAdvt::RaPacket;
using RouterAdvt::RaPacketPrefixInfo;

RaPacketPrefixInfo infoOf(char const* prefix, RouterAdvt::U32 preferredLifetime = 0) {
  RaPacketPrefixInfo info(prefixOf(prefix));
  info.preferredLifetimeIs(preferredLifetime);
  return info;
}

RaPacket packetWith(std::initializer_list<char const*> prefixes) {
  RaPacket packet(IntfId("Ethernet1"));
  for (char const* const prefix : prefixes) packet.prefixInfoIs(prefixOf(prefix), infoOf(prefix));
  return packet;
}

TEST(RaPacket, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  using enum AttributeKind;
  using T = RaPacket;
  AttributeRow const rows[] = {
      {258, T::intfIdAttr, "intfId", scalar, "IntfId", "Ethernet1"},
      {259, T::curHopLimitAttr, "curHopLimit", scalar, "U8", "0", true},
      {260, T::managedConfigFlagAttr, "managedConfigFlag", scalar, "bool", "false", true},
      {261, T::otherConfigFlagAttr, "otherConfigFlag", scalar, "bool", "false", true},
      {262, T::reachableTimeAttr, "reachableTime", scalar, "U32", "0", true},
      {263, T::retransTimerAttr, "retransTimer", scalar, "U32", "0", true},
      {264, T::mtuSpecifiedAttr, "mtuSpecified", scalar, "bool", "false", true},
      {265, T::mtuAttr, "mtu", scalar, "U32", "0", true},
      {266, T::srcIp6AddrAttr, "srcIp6Addr", scalar, "Ip6Addr", "::", true},
      {267, T::routerLifeTimeAttr, "routerLifeTime", scalar, "U16", "0", true},
      {268, T::prefixInfoAttr, "prefixInfo", collection, "RouterAdvt::RaPacketPrefixInfo", nullptr},
      {269, T::isDeathPacketAttr, "isDeathPacket", computed, "bool", "true"},
  };
  RaPacket packet(IntfId("Ethernet1"));
  EXPECT_STREQ(T::typeRecord().name, "RouterAdvt::RaPacket");
  EXPECT_EQ(T::typeRecord().kind, Fwk::TypeKind::value);
  EXPECT_TRUE(T::typeRecord().baseAttributes().empty());
  EXPECT_STREQ(T::typeRecord().attribute("prefixInfo")->collection->keyTypeName, "Ip6AddrWithMask");
  expectAttributes(T::typeRecord(), {&packet, &T::typeRecord()}, rows);
}

TEST(RaPacket, MadeFromAnInterfaceItHasEveryOtherDefaultAndNoPrefixes) {
  RaPacket const packet(IntfId("Ethernet1"));
  EXPECT_EQ(packet.intfId(), "Ethernet1");
  EXPECT_EQ(packet.curHopLimit(), 0);
  EXPECT_FALSE(packet.managedConfigFlag());
  EXPECT_FALSE(packet.otherConfigFlag());
  EXPECT_EQ(packet.reachableTime(), 0u);
  EXPECT_EQ(packet.retransTimer(), 0u);
  EXPECT_FALSE(packet.mtuSpecified());
  EXPECT_EQ(packet.mtu(), 0u);
  EXPECT_TRUE(packet.srcIp6Addr().isUnspecified());
  EXPECT_EQ(packet.routerLifeTime(), 0);
  EXPECT_TRUE(packet.prefixInfo().empty());
}

TEST(RaPacket, EachSetterStoresItsAttributeAloneAndMakesThePacketUnequal) {
  using T = RaPacket;
  T const packet = packetWith({"2001:db8::/64"});
  expectValueSetter(packet, "curHopLimit", &T::curHopLimit, &T::curHopLimitIs, 0, 255);
  expectValueSetter(packet, "managedConfigFlag", &T::managedConfigFlag, &T::managedConfigFlagIs, false, true);
  expectValueSetter(packet, "otherConfigFlag", &T::otherConfigFlag, &T::otherConfigFlagIs, false, true);
  expectValueSetter(packet, "reachableTime", &T::reachableTime, &T::reachableTimeIs, 0, 0xffffffff);
  expectValueSetter(packet, "retransTimer", &T::retransTimer, &T::retransTimerIs, 0, 0xffffffff);
  expectValueSetter(packet, "mtuSpecified", &T::mtuSpecified, &T::mtuSpecifiedIs, false, true);
  expectValueSetter(packet, "mtu", &T::mtu, &T::mtuIs, 0, 0xffffffff);
  expectValueSetter(packet, "srcIp6Addr", &T::srcIp6Addr, &T::srcIp6AddrIs, Net::Ip6Addr(), addrOf("fe80::1"));
  expectValueSetter(packet, "routerLifeTime", &T::routerLifeTime, &T::routerLifeTimeIs, 0, 0xffff);
}

TEST(RaPacket, ATextOutOfAFieldsRangeIsNotStored) {
  RaPacket packet(IntfId("Ethernet1"));
  Fwk::ObjectRef const object{&packet, &RaPacket::typeRecord()};
  EXPECT_EQ(Fwk::setAttribute(object, "curHopLimit", "256").error, Fwk::ReflectionError::outOfRange);
  EXPECT_EQ(Fwk::setAttribute(object, "routerLifeTime", "65536").error, Fwk::ReflectionError::outOfRange);
  EXPECT_EQ(packet, RaPacket(IntfId("Ethernet1")));
}

TEST(RaPacket, IsADeathPacketExactlyWhileTheRouterLifetimeIs0) {
  RaPacket packet(IntfId("Ethernet1"));
  Fwk::ConstObjectRef const object = Fwk::objectRef(packet);
  EXPECT_TRUE(packet.isDeathPacket());
  packet.routerLifeTimeIs(1);
  EXPECT_FALSE(packet.isDeathPacket());
  EXPECT_EQ(readText(object, 269), "false");
  packet.routerLifeTimeIs(0xffff);
  EXPECT_FALSE(packet.isDeathPacket());
  packet.routerLifeTimeIs(0);
  EXPECT_TRUE(packet.isDeathPacket());
  EXPECT_EQ(readText(object, 269), "true");
}

TEST(RaPacket, PrefixInfoOfAnAbsentPrefixIsTheDefaultEntry) {
  RaPacket const packet = packetWith({"2001:db8::/64"});
  EXPECT_EQ(packet.prefixInfo(prefixOf("2001:db8::/63")), RaPacketPrefixInfo());
  EXPECT_EQ(packet.prefixInfo(prefixOf("2001:db8::/63")).prefix().maskLen(), 0);
  EXPECT_FALSE(packet.prefixInfo().contains(prefixOf("2001:db8::/63")));
}

TEST(RaPacket, PrefixInfoIsStoredUnderItsKeyInsertingOrOverwriting) {
  RaPacket packet(IntfId("Ethernet1"));
  packet.prefixInfoIs(prefixOf("2001:db8::/64"), infoOf("2001:db8::/64", 1));
  EXPECT_EQ(packet.prefixInfo().size(), 1u);
  EXPECT_TRUE(packet.prefixInfo().contains(prefixOf("2001:db8::/64")));
  packet.prefixInfoIs(prefixOf("2001:db8::/64"), infoOf("2001:db8::/64", 2));
  EXPECT_EQ(packet.prefixInfo().size(), 1u);
  EXPECT_EQ(packet.prefixInfo(prefixOf("2001:db8::/64")).preferredLifetime(), 2u);
}

TEST(RaPacket, PrefixInfoIsStoredUnchangedWhateverTheKey) {
  RaPacket packet(IntfId("Ethernet1"));
  packet.prefixInfoIs(prefixOf("2001:db8:1::/64"), infoOf("2001:db8:2::/48", 7));
  EXPECT_EQ(packet.prefixInfo(prefixOf("2001:db8:1::/64")), infoOf("2001:db8:2::/48", 7));
  EXPECT_FALSE(packet.prefixInfo().contains(prefixOf("2001:db8:2::/48")));
}

TEST(RaPacket, PrefixInfoIsDeletedByPrefixOrAltogether) {
  RaPacket packet = packetWith({"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64"});
  packet.prefixInfoDel(prefixOf("2001:db8:2::/64"));
  packet.prefixInfoDel(prefixOf("2001:db8:9::/64"));
  EXPECT_EQ(packet.prefixInfo().size(), 2u);
  EXPECT_FALSE(packet.prefixInfo().contains(prefixOf("2001:db8:2::/64")));
  packet.prefixInfoDelAll();
  EXPECT_TRUE(packet.prefixInfo().empty());
  EXPECT_EQ(packet, RaPacket(IntfId("Ethernet1")));
}

TEST(RaPacket, PrefixInfoIsWalkedInTheOrderOfStoring) {
  RaPacket const packet = packetWith({"2001:db8:3::/64", "2001:db8:1::/64", "2001:db8:2::/64"});
  std::vector<std::string> walked;
  for (auto const& [key, info] : packet.prefixInfo()) {
    EXPECT_EQ(key, info.prefix());
    walked.push_back(key.toString());
  }
  EXPECT_EQ(walked, (std::vector<std::string>{"2001:db8:3::/64", "2001:db8:1::/64", "2001:db8:2::/64"}));
}

TEST(RaPacket, PrefixInfoIsReadThroughReflectionAttributeByAttribute) {
  RaPacket packet = packetWith({"2001:db8:1::/64", "2001:db8:2::/64"});
  std::string read;
  auto const* const attr = RaPacket::typeRecord().attribute("prefixInfo");
  EXPECT_EQ(attr->collection->size(&packet), 2u);
  attr->collection->forEach(&packet, [&](Fwk::MemberRef const& member) {
    EXPECT_EQ(member.value.type, &RaPacketPrefixInfo::typeRecord());
    read += member.key + "=" + *readText(member.value, 258) + ";";
    return true;
  });
  EXPECT_EQ(read, "2001:db8:1::/64=2001:db8:1::/64;2001:db8:2::/64=2001:db8:2::/64;");
}

// Nothing stops a router from sending a prefix length above 128.
TEST(RaPacket, APrefixInfoIsFoundThroughReflectionByTheKeyThatItShows) {
  Net::Ip6AddrWithMask const received(addrOf("2001:db8::"), 200);
  RaPacket packet(IntfId("Ethernet1"));
  packet.prefixInfoIs(received, RaPacketPrefixInfo());
  auto const view = [](Fwk::CollectionView const& prefixInfo) {
    EXPECT_TRUE(prefixInfo.contains("2001:db8::/200"));
    EXPECT_FALSE(prefixInfo.contains("2001:db8::/201"));
  };
  EXPECT_TRUE(Fwk::reflectCollection({&packet, &RaPacket::typeRecord()}, "prefixInfo", view));
}

TEST(RaPacket, WithEqualFieldsAndTheSamePrefixesIsEqual) {
  EXPECT_TRUE(packetWith({"2001:db8:1::/64", "2001:db8:2::/64"}) == packetWith({"2001:db8:1::/64", "2001:db8:2::/64"}));
}

TEST(RaPacket, WithAnotherNumberOfPrefixesIsUnequal) {
  RaPacket const packet = packetWith({"2001:db8:1::/64", "2001:db8:2::/64"});
  EXPECT_FALSE(packet == packetWith({"2001:db8:1::/64"}));
  EXPECT_FALSE(packet == packetWith({"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64"}));
  EXPECT_FALSE(packet == packetWith({}));
}

TEST(RaPacket, WithAnotherKeyUnderAnEqualValueIsUnequal) {
  RaPacket one(IntfId("Ethernet1")), another(IntfId("Ethernet1"));
  one.prefixInfoIs(prefixOf("2001:db8:1::/64"), infoOf("2001:db8::/64"));
  another.prefixInfoIs(prefixOf("2001:db8:2::/64"), infoOf("2001:db8::/64"));
  EXPECT_FALSE(one == another);
}

TEST(RaPacket, WithOnePrefixesPreferredLifetimeDifferentIsUnequal) {
  RaPacket const one = packetWith({"2001:db8:1::/64", "2001:db8:2::/64"});
  RaPacket another = one;
  another.prefixInfoIs(prefixOf("2001:db8:2::/64"), infoOf("2001:db8:2::/64", 1));
  EXPECT_FALSE(one == another);
}

TEST(RaPacket, OfAnotherInterfaceIsUnequal) {
  EXPECT_FALSE(RaPacket(IntfId("Ethernet1")) == RaPacket(IntfId("Ethernet2")));
}

TEST(RaPacket, IsEqualToItself) {
  RaPacket const packet = packetWith({"2001:db8:1::/64"});
  EXPECT_TRUE(packet == packet);
}

TEST(RaPacket, EqualityDoesNotDependOnWhatWasDeletedBefore) {
  RaPacket packet = packetWith({"2001:db8:1::/64", "2001:db8:2::/64", "2001:db8:3::/64"});
  packet.prefixInfoDel(prefixOf("2001:db8:2::/64"));
  EXPECT_TRUE(packet == packetWith({"2001:db8:1::/64", "2001:db8:3::/64"}));
}

TEST(RaPacket, NotIsTrueForThePacketOfTheEmptyInterfaceAlone) {
  EXPECT_TRUE(!RaPacket());
  EXPECT_TRUE(!RaPacket(IntfId("")));
  EXPECT_FALSE(!RaPacket(IntfId("Ethernet1")));
  RaPacket withField;
  withField.curHopLimitIs(1);
  EXPECT_FALSE(!withField);
  RaPacket withPrefix;
  withPrefix.prefixInfoIs(prefixOf("2001:db8::/64"), RaPacketPrefixInfo());
  EXPECT_FALSE(!withPrefix);
}

TEST(RaPacket, ACopyIsIndependent) {
  RaPacket const packet = packetWith({"2001:db8:1::/64"});
  RaPacket copy = packet;
  copy.routerLifeTimeIs(9);
  copy.prefixInfoDelAll();
  EXPECT_EQ(packet.routerLifeTime(), 0);
  EXPECT_EQ(packet.prefixInfo().size(), 1u);
}

TEST(RaPacket, AssigningReplacesThePrefixesWholly) {
  RaPacket packet = packetWith({"2001:db8:1::/64", "2001:db8:2::/64"});
  packet = packetWith({"2001:db8:3::/64"});
  EXPECT_EQ(packet, packetWith({"2001:db8:3::/64"}));
}

TEST(RaPacket, UpToFourPrefixesAllocateNothing) {
  RaPacketPrefixInfo const infos[] = {infoOf("2001:db8:1::/64"), infoOf("2001:db8:2::/64"), infoOf("2001:db8:3::/64"),
                                      infoOf("2001:db8:4::/64")};
  auto const before = allocationCount();
  RaPacket packet(IntfId("Ethernet1"));
  for (auto const& info : infos) packet.prefixInfoIs(info.prefix(), info);
  RaPacket const copy = packet;
  bool const equal = copy == packet;
  EXPECT_EQ(allocationCount(), before);
  EXPECT_TRUE(equal);
  EXPECT_EQ(copy.prefixInfo().size(), 4u);
}

TEST(RaPacket, HoldsAnyNumberOfPrefixes) {
  RaPacket packet(IntfId("Ethernet1"));
  for (int i = 0; i < 1000; ++i) {
    auto const info = infoOf(("2001:db8:" + std::to_string(i % 10) + ":" + std::to_string(i) + "::/64").c_str());
    packet.prefixInfoIs(info.prefix(), info);
  }
  EXPECT_EQ(packet.prefixInfo().size(), 1000u);
  EXPECT_EQ(packet.prefixInfo(prefixOf("2001:db8:9:999::/64")).prefix(), prefixOf("2001:db8:9:999::/64"));
}

}  // namespace
