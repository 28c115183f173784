#include <RouterPlatform/Ip6/IntfStatus.h>
#include <tests/RouterPlatform/Support/ModelTest.h>

namespace {

using namespace ModelTest;
using Ip6::IntfStatus;

TEST(Ip6IntfStatus, HasTheAttributesOfItsTableWithTheirNumbersAndDefaults) {
  AttributeRow const rows[] = {
      {258, IntfStatus::intfIdAttr, "intfId", AttributeKind::key, "IntfId", "Ethernet1"},
      {259, IntfStatus::addrAttr, "addr", AttributeKind::collection, "Ip6AddrWithMask", nullptr},
      {260, IntfStatus::nsRetransmitIntervalAttr, "nsRetransmitInterval", AttributeKind::scalar, "U32", "0", true},
  };
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  EXPECT_STREQ(IntfStatus::typeRecord().name, "Ip6::IntfStatus");
  EXPECT_EQ(IntfStatus::typeRecord().kind, Fwk::TypeKind::entity);
  EXPECT_EQ(&intf->fwkType(), &IntfStatus::typeRecord());
  EXPECT_STREQ(IntfStatus::typeRecord().attribute("addr")->collection->keyTypeName, "Ip6AddrWithMask");
  expectAttributes(intf->fwkType(), Fwk::objectRef(*intf), rows);
}

TEST(Ip6IntfStatus, IsMadeWithItsKeyWithoutNameAndWithoutAddresses) {
  auto const before = liveCount<IntfStatus>();
  auto intf = IntfStatus::IntfStatusIs("Ethernet1");
  EXPECT_EQ(intf->intfId(), "Ethernet1");
  EXPECT_EQ(intf->key(), "Ethernet1");
  EXPECT_TRUE(intf->name().empty());
  EXPECT_EQ(intf->keyText(), "Ethernet1");
  EXPECT_EQ(intf->parent(), nullptr);
  EXPECT_TRUE(intf->addr().empty());
  EXPECT_EQ(intf->nsRetransmitInterval(), 0u);
  EXPECT_EQ(intf->references(), 1u);
  EXPECT_TRUE(intf->hasNotificationActive());
  EXPECT_EQ(liveCount<IntfStatus>(), before + 1);
  intf = nullptr;
  EXPECT_EQ(liveCount<IntfStatus>(), before);
}

TEST(Ip6IntfStatus, IsMadeFromTheTextOfItsKey) {
  auto const made = Fwk::ptrCast<IntfStatus>(IntfStatus::typeRecord().create("Ethernet2"));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->intfId(), "Ethernet2");
  EXPECT_EQ(IntfStatus::typeRecord().create(std::string(Net::IntfId::maxSize + 1, 'x')), nullptr);
}

TEST(Ip6IntfStatus, SettingTheRetransmitIntervalTellsOnlyWhenItChanges) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  intf->addrIs(prefixOf("fe80::1/64"));
  expectSetter(intf, 260, "nsRetransmitInterval", &IntfStatus::nsRetransmitInterval,
               &IntfStatus::nsRetransmitIntervalIs, 0, 0xffffffff);
}

TEST(Ip6IntfStatus, AnAddressIsAddedOnceAndToldWithItsText) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  Changes changes(*intf);
  intf->addrIs(prefixOf("2001:db8::1/64"));
  intf->addrIs(prefixOf("2001:db8::1/64"));
  EXPECT_EQ(changes.take(), (ChangeList{{259, "2001:db8::1/64"}}));
  EXPECT_TRUE(intf->addr(prefixOf("2001:db8::1/64")));
  EXPECT_FALSE(intf->addr(prefixOf("2001:db8::1/63")));
  EXPECT_EQ(intf->addr().size(), 1u);
}

TEST(Ip6IntfStatus, AnAddressIsRemovedOnceAndToldWithItsText) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  intf->addrIs(prefixOf("2001:db8::1/64"));
  Changes changes(*intf);
  EXPECT_TRUE(intf->addrDel(prefixOf("2001:db8::1/64")));
  EXPECT_FALSE(intf->addrDel(prefixOf("2001:db8::1/64")));
  EXPECT_EQ(changes.take(), (ChangeList{{259, "2001:db8::1/64"}}));
  EXPECT_TRUE(intf->addr().empty());
}

TEST(Ip6IntfStatus, AllAddressesAreRemovedInTheirOrderEachToldOfItsOwn) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  for (char const* const text : {"fe80::1/64", "2001:db8::1/64", "2001:db8:1::1/64"}) intf->addrIs(prefixOf(text));
  Changes changes(*intf);
  intf->addrDelAll();
  EXPECT_EQ(changes.take(), (ChangeList{{259, "fe80::1/64"}, {259, "2001:db8::1/64"}, {259, "2001:db8:1::1/64"}}));
  EXPECT_TRUE(intf->addr().empty());
}

// A mask length above 128 may be stored, so it is shown; it is not taken from text for a new member.
TEST(Ip6IntfStatus, WhatReflectionShowsOfTheAddressesItFindsAndRemoves) {
  auto const intf = IntfStatus::IntfStatusIs("Ethernet1");
  intf->addrIs({addrOf("2001:db8::1"), 129});
  auto const reflected = Fwk::reflectCollection(Fwk::objectRef(*intf), "addr", [](Fwk::CollectionView const& view) {
    std::string shown;
    view.forEach([&](Fwk::MemberRef const& member) {
      shown = member.key;
      return true;
    });
    EXPECT_EQ(shown, "2001:db8::1/129");
    EXPECT_TRUE(view.contains(shown));
    EXPECT_TRUE(view.get(shown, [&](Fwk::MemberRef const& member) { EXPECT_EQ(member.key, shown); }));
    EXPECT_EQ(view.get("2001:db8::1/130", [](Fwk::MemberRef const&) {}).error, Fwk::ReflectionError::noSuchMember);
    EXPECT_EQ(view.get("2001:db8::1/256", [](Fwk::MemberRef const&) {}).error, Fwk::ReflectionError::malformed);
    EXPECT_EQ(view.set(shown).error, Fwk::ReflectionError::malformed);
    EXPECT_TRUE(view.del(shown));
  });
  EXPECT_TRUE(reflected);
  EXPECT_TRUE(intf->addr().empty());
}

}  // namespace
