#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

#include <array>

// What every collection of owned entities in the model does. Each of the structures below is one collection.

namespace {

using namespace ModelTest;
using namespace RouterAdvt;

struct ConfigIntf {
  using Owner = Config;
  using Member = IntfConfig;
  using Key = IntfId;
  static constexpr AttrId attr = 258;
  static constexpr char const* attrName = "intf";
  static Ptr<Owner> owner() { return configFactory("owner"); }
  static std::array<Key, 3> keys() { return {"Ethernet2", "Ethernet1", "Ethernet3"}; }
  static Key keyOf(Member const& member) { return member.intfId(); }
  static auto const& all(Owner const& owner) { return owner.intf(); }
  static auto get(Owner const& owner, Key const& key) { return owner.intf(key); }
  static auto add(Owner& owner, Key const& key) { return owner.intfIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.intfDel(key); }
  static void delAll(Owner& owner) { owner.intfDelAll(); }
};

struct ConfigPrefixProfiles {
  using Owner = Config;
  using Member = PrefixProfileEntry;
  using Key = Name;
  static constexpr AttrId attr = 263;
  static constexpr char const* attrName = "prefixProfiles";
  static Ptr<Owner> owner() { return configFactory("owner"); }
  static std::array<Key, 3> keys() { return {"guest", "", "staff"}; }
  static Key keyOf(Member const& member) { return member.name(); }
  static auto const& all(Owner const& owner) { return owner.prefixProfiles(); }
  static auto get(Owner const& owner, Key const& key) { return owner.prefixProfiles(key); }
  static auto add(Owner& owner, Key const& key) { return owner.prefixProfilesIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.prefixProfilesDel(key); }
  static void delAll(Owner& owner) { owner.prefixProfilesDelAll(); }
};

struct IntfConfigPrefixes {
  using Owner = IntfConfig;
  using Member = PrefixConfigEntry;
  using Key = Ip6AddrWithMask;
  static constexpr AttrId attr = 277;
  static constexpr char const* attrName = "prefixes";
  static Ptr<Owner> owner() { return intfConfigFactory("owner"); }
  static std::array<Key, 3> keys() {
    return {prefixOf("2001:db8::/64"), prefixOf("2001:db8::/48"), prefixOf("2001:db8::1/64")};
  }
  static Key keyOf(Member const& member) { return member.prefix(); }
  static auto const& all(Owner const& owner) { return owner.prefixes(); }
  static auto get(Owner const& owner, Key const& key) { return owner.prefixes(key); }
  static auto add(Owner& owner, Key const& key) { return owner.prefixesIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.prefixesDel(key); }
  static void delAll(Owner& owner) { owner.prefixesDelAll(); }
};

struct IntfConfigDnsServers {
  using Owner = IntfConfig;
  using Member = DNSServerConfigEntry;
  using Key = Ip6Addr;
  static constexpr AttrId attr = 284;
  static constexpr char const* attrName = "dnsServers";
  static Ptr<Owner> owner() { return intfConfigFactory("owner"); }
  static std::array<Key, 3> keys() { return {addrOf("2001:db8::53"), addrOf("2001:db8::52"), addrOf("::")}; }
  static Key keyOf(Member const& member) { return member.ipAddr(); }
  static auto const& all(Owner const& owner) { return owner.dnsServers(); }
  static auto get(Owner const& owner, Key const& key) { return owner.dnsServers(key); }
  static auto add(Owner& owner, Key const& key) { return owner.dnsServersIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.dnsServersDel(key); }
  static void delAll(Owner& owner) { owner.dnsServersDelAll(); }
};

struct IntfConfigDnsSuffixes {
  using Owner = IntfConfig;
  using Member = DNSSuffixConfigEntry;
  using Key = String;
  static constexpr AttrId attr = 289;
  static constexpr char const* attrName = "dnsSuffixes";
  static Ptr<Owner> owner() { return intfConfigFactory("owner"); }
  static std::array<Key, 3> keys() { return {"example.com", "Example.com", ""}; }
  static Key keyOf(Member const& member) { return member.suffix(); }
  static auto const& all(Owner const& owner) { return owner.dnsSuffixes(); }
  static auto get(Owner const& owner, Key const& key) { return owner.dnsSuffixes(key); }
  static auto add(Owner& owner, Key const& key) { return owner.dnsSuffixesIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.dnsSuffixesDel(key); }
  static void delAll(Owner& owner) { owner.dnsSuffixesDelAll(); }
};

struct StatusIntf {
  using Owner = Status;
  using Member = IntfStatus;
  using Key = IntfId;
  static constexpr AttrId attr = 258;
  static constexpr char const* attrName = "intf";
  static Ptr<Owner> owner() { return statusFactory("owner"); }
  static std::array<Key, 3> keys() { return {"Ethernet2", "Ethernet1", "Ethernet3"}; }
  static Key keyOf(Member const& member) { return member.intfId(); }
  static auto const& all(Owner const& owner) { return owner.intf(); }
  static auto get(Owner const& owner, Key const& key) { return owner.intf(key); }
  static auto add(Owner& owner, Key const& key) { return owner.intfIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.intfDel(key); }
  static void delAll(Owner& owner) { owner.intfDelAll(); }
};

struct RouterNeighborStatusNeighbor {
  using Owner = RouterNeighborStatus;
  using Member = RouterNeighbors;
  using Key = IntfId;
  static constexpr AttrId attr = 259;
  static constexpr char const* attrName = "neighbor";
  static Ptr<Owner> owner() { return routerNeighborStatusFactory("owner"); }
  static std::array<Key, 3> keys() { return {"Ethernet2", "Ethernet1", "Ethernet3"}; }
  static Key keyOf(Member const& member) { return member.intfId(); }
  static auto const& all(Owner const& owner) { return owner.neighbor(); }
  static auto get(Owner const& owner, Key const& key) { return owner.neighbor(key); }
  static auto add(Owner& owner, Key const& key) { return owner.neighborIs(key); }
  static auto del(Owner& owner, Key const& key) { return owner.neighborDel(key); }
  static void delAll(Owner& owner) { owner.neighborDelAll(); }
};

using EveryCollection = testing::Types<ConfigIntf, ConfigPrefixProfiles, IntfConfigPrefixes, IntfConfigDnsServers,
                                       IntfConfigDnsSuffixes, StatusIntf, RouterNeighborStatusNeighbor>;
struct CollectionName {
  template <class C>
  static std::string GetName(int) {
    return C::Owner::typeRecord().name + std::string("_") + C::attrName;
  }
};

template <class C>
struct OwnedCollection : testing::Test {
  using Key = typename C::Key;
  Ptr<typename C::Owner> owner = C::owner();
  std::array<Key, 3> keys = C::keys();
  Changes changes{*owner};

  static Change changeOf(Key const& key) { return {C::attr, plainText(key)}; }
  void addAll() {
    for (Key const& key : keys) C::add(*owner, key);
    changes.take();
  }
};
TYPED_TEST_SUITE(OwnedCollection, EveryCollection, CollectionName);

TYPED_TEST(OwnedCollection, IsEmptyAtFirst) {
  EXPECT_TRUE(TypeParam::all(*this->owner).empty());
  EXPECT_EQ(TypeParam::all(*this->owner).size(), 0u);
}

TYPED_TEST(OwnedCollection, AnAbsentKeyGivesNull) {
  TypeParam::add(*this->owner, this->keys[0]);
  EXPECT_EQ(TypeParam::get(*this->owner, this->keys[1]), nullptr);
  EXPECT_FALSE(TypeParam::all(*this->owner).contains(this->keys[1]));
}

TYPED_TEST(OwnedCollection, AddingAKeyMakesItsMemberWithTheOwnerAsParent) {
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  ASSERT_NE(member, nullptr);
  EXPECT_EQ(TypeParam::keyOf(*member), this->keys[0]);
  EXPECT_EQ(TypeParam::get(*this->owner, this->keys[0]), member);
  EXPECT_TRUE(TypeParam::all(*this->owner).contains(this->keys[0]));
  EXPECT_EQ(member->parent(), this->owner);
  EXPECT_EQ(member->parentAttrName(), TypeParam::attrName);
  EXPECT_TRUE(member->hasNotificationActive());
}

TYPED_TEST(OwnedCollection, AMemberMadeHereIsLikeOneMadeAlone) {
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  auto const alone = TypeParam::Member::typeRecord().create(plainText(this->keys[0]));
  ASSERT_NE(alone, nullptr);
  EXPECT_EQ(&member->fwkType(), &alone->fwkType());
  auto const differing = changedBetween(snapshot(Fwk::objectRef(*alone)), snapshot(Fwk::objectRef(*member)));
  for (auto const& name : differing)
    EXPECT_TRUE(name == "parent" || name == "parentAttrName" || name == "fullName" || name == "entity") << name;
}

TYPED_TEST(OwnedCollection, AddingAKeyTellsOnceWithTheKey) {
  TypeParam::add(*this->owner, this->keys[0]);
  EXPECT_EQ(this->changes.take(), ChangeList{this->changeOf(this->keys[0])});
}

TYPED_TEST(OwnedCollection, AddingAKeyThatIsThereReturnsTheSameMemberAndTellsNobody) {
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  this->changes.take();
  EXPECT_EQ(TypeParam::add(*this->owner, this->keys[0]), member);
  EXPECT_EQ(TypeParam::all(*this->owner).size(), 1u);
  EXPECT_EQ(this->changes.take(), ChangeList{});
}

TYPED_TEST(OwnedCollection, ObserversFindTheNewStateAndAreGivenTheKey) {
  std::vector<bool> present;
  Changes const looking(*this->owner, [&](Fwk::Notification const& told) {
    auto const* const key = told.key.template as<typename TypeParam::Key>();
    ASSERT_NE(key, nullptr);
    auto const member = TypeParam::get(*this->owner, *key);
    EXPECT_TRUE(!member || member->parent() == this->owner);
    present.push_back(member != nullptr);
  });
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  TypeParam::del(*this->owner, this->keys[0]);
  EXPECT_EQ(present, (std::vector<bool>{true, false}));
}

TYPED_TEST(OwnedCollection, DeletingAKeyReturnsItsMemberWithItsAttributesAndWithoutParent) {
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  this->changes.take();
  auto const removed = TypeParam::del(*this->owner, this->keys[0]);
  EXPECT_EQ(removed, member);
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_EQ(removed->parentAttrName(), "");
  EXPECT_EQ(TypeParam::keyOf(*removed), this->keys[0]);
  EXPECT_EQ(TypeParam::get(*this->owner, this->keys[0]), nullptr);
  EXPECT_EQ(this->changes.take(), ChangeList{this->changeOf(this->keys[0])});
}

TYPED_TEST(OwnedCollection, DeletingAnAbsentKeyReturnsNullAndTellsNobody) {
  TypeParam::add(*this->owner, this->keys[0]);
  this->changes.take();
  EXPECT_EQ(TypeParam::del(*this->owner, this->keys[1]), nullptr);
  EXPECT_EQ(this->changes.take(), ChangeList{});
  EXPECT_EQ(TypeParam::all(*this->owner).size(), 1u);
}

TYPED_TEST(OwnedCollection, DeletingAllThreeMembersTellsOncePerKey) {
  this->addAll();
  auto const first = TypeParam::get(*this->owner, this->keys[0]);
  TypeParam::delAll(*this->owner);
  EXPECT_EQ(this->changes.take(),
            (ChangeList{this->changeOf(this->keys[0]), this->changeOf(this->keys[1]), this->changeOf(this->keys[2])}));
  EXPECT_TRUE(TypeParam::all(*this->owner).empty());
  EXPECT_EQ(first->parent(), nullptr);
}

TYPED_TEST(OwnedCollection, DeletingAllOfNoneTellsNobody) {
  TypeParam::delAll(*this->owner);
  EXPECT_EQ(this->changes.take(), ChangeList{});
}

TYPED_TEST(OwnedCollection, IsWalkedInTheOrderOfAddition) {
  this->addAll();
  std::vector<typename TypeParam::Key> walked;
  for (auto const& [key, member] : TypeParam::all(*this->owner)) {
    EXPECT_EQ(TypeParam::keyOf(*member), key);
    walked.push_back(key);
  }
  EXPECT_TRUE(std::equal(walked.begin(), walked.end(), this->keys.begin(), this->keys.end()));
}

TYPED_TEST(OwnedCollection, AKeyAddedAgainAfterItWasDeletedIsANewMember) {
  TypeParam::add(*this->owner, this->keys[0]);
  auto const removed = TypeParam::del(*this->owner, this->keys[0]);
  auto const again = TypeParam::add(*this->owner, this->keys[0]);
  EXPECT_NE(again, removed);
  EXPECT_EQ(removed->parent(), nullptr);
}

TYPED_TEST(OwnedCollection, OwnsItsMembersAndADeletedOneEndsWithItsLastReference) {
  auto const before = liveCount<typename TypeParam::Member>();
  this->addAll();
  EXPECT_EQ(liveCount<typename TypeParam::Member>(), before + 3);
  auto removed = TypeParam::del(*this->owner, this->keys[0]);
  EXPECT_EQ(liveCount<typename TypeParam::Member>(), before + 3);
  EXPECT_EQ(removed->references(), 1u);
  removed = nullptr;
  EXPECT_EQ(liveCount<typename TypeParam::Member>(), before + 2);
}

TYPED_TEST(OwnedCollection, EndsWithItsOwnerAndAMemberThatIsHeldLosesItsParent) {
  auto const before = liveCount<typename TypeParam::Member>();
  auto ending = TypeParam::owner();
  auto const held = TypeParam::add(*ending, this->keys[0]);
  TypeParam::add(*ending, this->keys[1]);
  ending = nullptr;
  EXPECT_EQ(liveCount<typename TypeParam::Member>(), before + 1);
  EXPECT_EQ(held->parent(), nullptr);
  EXPECT_EQ(TypeParam::keyOf(*held), this->keys[0]);
}

TYPED_TEST(OwnedCollection, AnObserverMayDeleteTheMemberItIsToldOf) {
  int told = 0;
  Changes const deleting(*this->owner, [&](Fwk::Notification const& change) {
    ++told;
    TypeParam::del(*this->owner, *change.key.template as<typename TypeParam::Key>());
  });
  auto const member = TypeParam::add(*this->owner, this->keys[0]);
  EXPECT_EQ(told, 2);
  ASSERT_NE(member, nullptr);
  EXPECT_EQ(member->parent(), nullptr);
  EXPECT_TRUE(TypeParam::all(*this->owner).empty());
}

TYPED_TEST(OwnedCollection, IsReadAndChangedThroughReflection) {
  std::string const first = plainText(this->keys[0]), second = plainText(this->keys[1]);
  auto const use = [&](Fwk::CollectionView const& view) {
    EXPECT_TRUE(view.set(first));
    EXPECT_TRUE(view.set(first));
    EXPECT_TRUE(view.contains(first));
    EXPECT_FALSE(view.contains(second));
    EXPECT_EQ(view.entity(first), TypeParam::get(*this->owner, this->keys[0]));
    EXPECT_EQ(view.size(), 1u);
    view.forEach([&](Fwk::MemberRef const& member) {
      EXPECT_EQ(member.key, first);
      return true;
    });
    EXPECT_TRUE(view.del(first));
    EXPECT_EQ(view.del(first).error, Fwk::ReflectionError::noSuchMember);
    EXPECT_TRUE(view.delAll());
  };
  EXPECT_TRUE(Fwk::reflectCollection(Fwk::objectRef(*this->owner), TypeParam::attrName, use));
  EXPECT_EQ(this->changes.take(), (ChangeList{this->changeOf(this->keys[0]), this->changeOf(this->keys[0])}));
}

TEST(OwnedCollections, HaveNoLimitOfTheirSize) {
  auto const config = configFactory("ra");
  auto const intf = config->intfIs("Ethernet1");
  for (int i = 0; i < 3000; ++i) {
    auto const text = std::to_string(i);
    config->intfIs("Ethernet" + text);
    config->prefixProfilesIs("profile" + text);
    intf->prefixesIs(prefixOf(("2001:db8:" + text + "::/64").c_str()));
    intf->dnsServersIs(addrOf(("2001:db8::" + text).c_str()));
    intf->dnsSuffixesIs(text + ".example.com");
  }
  EXPECT_EQ(config->intf().size(), 3000u);
  EXPECT_EQ(config->prefixProfiles().size(), 3000u);
  EXPECT_EQ(intf->prefixes().size(), 3000u);
  EXPECT_EQ(intf->dnsServers().size(), 3000u);
  EXPECT_EQ(intf->dnsSuffixes().size(), 3000u);
  EXPECT_EQ(intf->dnsSuffixes("2999.example.com")->suffix(), "2999.example.com");
  EXPECT_EQ(intf->numPrefixesToAdvertise(), 3000u);
}

}  // namespace
