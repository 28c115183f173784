#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Mirror/TreeAssign.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gmock/gmock.h>

namespace {

using Fwk::Ptr;
using testing::ElementsAre;
using testing::IsEmpty;
using TestModel::Box;
using TestModel::Port;

/// Holds boxes in arbitrary order.
class Cellar final : public Fwk::Entity {
 public:
  static constexpr Fwk::AttrId boxesAttr = Fwk::firstOwnAttr;
  explicit Cellar(Fwk::Name name) : name_(name) {}
  Fwk::Name name() const override { return name_; }
  Fwk::EntityCollection<Fwk::Name, Box> boxes{*this, boxesAttr};

  static constexpr char const* fwkTypeName = "TreeAssignTest::Cellar";
  static Fwk::TypeRecord const& typeRecord() {
    static constinit Fwk::LiveCount live;
    static constexpr auto attrs =
        Fwk::attributes<Cellar>(Fwk::collection<&Cellar::boxes>("boxes", Fwk::MemberOrder::arbitrary));
    static constexpr Fwk::TypeRecord record = Fwk::entityRecord<Cellar, Fwk::Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  ~Cellar() override = default;
  Fwk::Name name_;
};

struct TreeAssign : testing::Test {
  Ptr<Box> const from = Fwk::create<Box>("from");
  Ptr<Box> const to = Fwk::create<Box>("to");
  std::vector<std::string> heard;
  Fwk::Subscription const observing = Fwk::observe(to, [this](Fwk::Notification const& n) {
    std::string text = n.entity.fwkType().attribute(n.attr)->name;
    if (n.key) {
      text += n.key.change() == Fwk::MemberChange::removed ? '-' : '+';
      n.key.appendTo(text);
    }
    heard.push_back(text);
  });

  std::vector<std::string> assign() {
    heard.clear();
    Fwk::assignTree(from, to);
    return std::exchange(heard, {});
  }
  static void portsIs(Box& box, std::initializer_list<char const*> keys) {
    box.portsDelAll();
    for (char const* const key : keys) box.portsIs(key);
  }
  static std::vector<std::string> portsOf(Box const& box) {
    std::vector<std::string> keys;
    for (auto const& [key, port] : box.ports()) keys.push_back(key.toString());
    return keys;
  }
};

TEST_F(TreeAssign, EqualTreesAreLeftAlone) {
  portsIs(*from, {"a", "b"});
  from->numberIs(7);
  assign();
  EXPECT_THAT(assign(), IsEmpty());
}

TEST_F(TreeAssign, SetsScalarsThatDiffer) {
  from->numberIs(7);
  from->textIs("x");
  to->textIs("x");
  to->flagIs(!from->flag());
  EXPECT_THAT(assign(), testing::UnorderedElementsAre("number", "flag"));
  EXPECT_EQ(to->number(), 7u);
  EXPECT_EQ(to->flag(), from->flag());
}

TEST_F(TreeAssign, KeepsTheKeyOfTheRoot) {
  assign();
  EXPECT_EQ(to->name(), "to");
}

TEST_F(TreeAssign, AMemberThatStaysIsTheSameEntityAndGetsItsDifferences) {
  portsIs(*from, {"a", "b"});
  portsIs(*to, {"a", "b"});
  Ptr<Port> const port = to->ports("b");
  from->ports("b")->speedIs(5);
  int told = 0;
  auto const observingPort = Fwk::observe(port, [&](Fwk::Notification const&) { ++told; });
  EXPECT_THAT(assign(), IsEmpty());
  EXPECT_EQ(told, 1);
  EXPECT_EQ(to->ports("b"), port);
  EXPECT_EQ(port->speed(), 5u);
}

TEST_F(TreeAssign, AddsAtTheEndAndRemovesAnywhereWithoutTouchingTheOthers) {
  portsIs(*to, {"a", "b", "c"});
  portsIs(*from, {"a", "c", "d"});
  from->ports("d")->speedIs(5);
  EXPECT_THAT(assign(), ElementsAre("ports-b", "ports+d"));
  EXPECT_EQ(to->ports("d")->speed(), 5u);
}

TEST_F(TreeAssign, TakesTheOrderOverByTakingOutWhatStandsTooEarly) {
  portsIs(*to, {"a", "b", "c"});
  portsIs(*from, {"c", "a", "b"});
  EXPECT_THAT(assign(), ElementsAre("ports-a", "ports-b", "ports+a", "ports+b"));
  EXPECT_THAT(portsOf(*to), ElementsAre("c", "a", "b"));
}

TEST_F(TreeAssign, WhatComesIntoTheMiddleTakesThoseBehindItWithIt) {
  portsIs(*to, {"a", "c", "d"});
  portsIs(*from, {"a", "b", "c", "d"});
  assign();
  EXPECT_THAT(portsOf(*to), ElementsAre("a", "b", "c", "d"));
}

TEST_F(TreeAssign, InArbitraryOrderMembersStayAndNewOnesComeLast) {
  auto const fromCellar = Fwk::create<Cellar>("from");
  auto const toCellar = Fwk::create<Cellar>("to");
  for (char const* const key : {"a", "b", "c"}) toCellar->boxes.memberIs(key);
  for (char const* const key : {"x", "c", "a", "y"}) fromCellar->boxes.memberIs(key);
  fromCellar->boxes.member("c")->numberIs(5);
  Ptr<Box> const box = toCellar->boxes.member("c");
  std::vector<std::string> told;
  auto const observingCellar = Fwk::observe(toCellar, [&](Fwk::Notification const& n) {
    told.push_back(n.key.change() == Fwk::MemberChange::removed ? "-" : "+");
    n.key.appendTo(told.back());
  });
  Fwk::assignTree(fromCellar, toCellar);
  EXPECT_THAT(std::exchange(told, {}), ElementsAre("+x", "+y", "-b"));
  std::vector<std::string> keys;
  for (auto const& [key, member] : toCellar->boxes) keys.push_back(key.toString());
  EXPECT_THAT(keys, ElementsAre("a", "c", "x", "y"));
  EXPECT_EQ(toCellar->boxes.member("c"), box);
  EXPECT_EQ(box->number(), 5u);
  Fwk::assignTree(fromCellar, toCellar);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(TreeAssign, ReplacesValuesInPlace) {
  for (auto const& box : {from, to}) {
    box->labelsIs("a", "1");
    box->labelsIs("b", "2");
  }
  from->labelsIs("a", "3");
  EXPECT_THAT(assign(), ElementsAre("labels+a"));
  EXPECT_EQ(to->labels("a"), "3");
}

TEST_F(TreeAssign, SetsAndChildrenFollow) {
  from->addressesIs(Net::Ip6Addr("fe80::1"));
  to->addressesIs(Net::Ip6Addr("fe80::2"));
  from->diskIs("new");
  to->diskIs("old");
  assign();
  EXPECT_TRUE(to->addresses().contains(Net::Ip6Addr("fe80::1")));
  EXPECT_FALSE(to->addresses().contains(Net::Ip6Addr("fe80::2")));
  ASSERT_TRUE(to->disk());
  EXPECT_EQ(to->disk()->name(), "new");
  from->diskDel();
  assign();
  EXPECT_FALSE(to->disk());
}

TEST_F(TreeAssign, AnyOrderOfAFewMembersIsReached) {
  std::vector<char const*> keys{"a", "b", "c", "d"};
  std::ranges::sort(keys, std::less<std::string_view>());
  do {
    portsIs(*from, {keys[0], keys[1], keys[2], keys[3]});
    assign();
    EXPECT_EQ(portsOf(*to), portsOf(*from));
  } while (std::ranges::next_permutation(keys, std::less<std::string_view>()).found);
}

TEST_F(TreeAssign, TreesOfTwoTypesAreRefused) {
  EXPECT_THROW(Fwk::assignTree(from, Fwk::create<Port>("a")), std::invalid_argument);
}

TEST_F(TreeAssign, WhatASetterOfTheTargetThrowsIsTold) {
  auto const refusing = Fwk::observe(to, [](Fwk::Notification const&) { throw std::runtime_error("not today"); });
  from->numberIs(9);
  EXPECT_THROW(assign(), std::runtime_error);
}

}  // namespace
