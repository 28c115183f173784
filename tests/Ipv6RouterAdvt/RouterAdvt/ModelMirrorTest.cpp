#include <Ipv6RouterAdvt/RouterAdvt.h>
#include <RouterPlatform/Fwk/Observe.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/TreeAssign.h>
#include <tests/Ipv6RouterAdvt/Support/TreeMutator.h>
#include <tests/RouterPlatform/Mirror/StreamText.h>
#include <tests/RouterPlatform/Mirror/TreeText.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

/// Every entity of the library in another process: what was set there is here.
namespace {

using namespace Fwk::ChangeStream;
using Fwk::OctetBuffer;
using Fwk::Ptr;
using Fwk::U8;
using RouterAdvt::Config;
using RouterAdvt::RouterNeighborRa;
using RouterAdvt::RouterNeighborRaKey;

using Trees = std::vector<Ptr<Fwk::Entity>>;

std::string textOf(Trees const& trees) {
  std::string text;
  for (auto const& tree : trees) (text += TreeText::of(tree)) += '\n';
  return text;
}

/// A writer and the reader at its other end, over a transport that may break.
class Link {
 public:
  Link(Source const& source, std::mt19937& random) : source_(source), random_(random), reader_(registeredRoot) {}

  /// Everything that is pending, in pieces of any size. False: the reader could not read it.
  bool sync() {
    while (writer_->pending()) {
      OctetBuffer octets;
      writer_->drain(octets, random_() % 4 ? Writer::noLimit : random_() % 500);
      if (!feed(octets)) return false;
    }
    return reader_.synchronized();
  }

  /// A part of what is pending; the rest comes when the trees have changed.
  bool syncPart() {
    OctetBuffer octets;
    writer_->drain(octets, random_() % 500);
    return feed(octets);
  }

  /// A part of what is pending arrives; then another connection is made.
  bool breakAndAttach() {
    OctetBuffer octets;
    writer_->drain(octets, random_() % 2000);
    octets.resize(random_() % (octets.size() + 1));
    if (!feed(octets)) return false;
    writer_ = std::make_unique<Writer>(source_);
    reader_.attach();
    return true;
  }

  Reader const& reader() const { return reader_; }
  Writer const& writer() const { return *writer_; }

 private:
  bool feed(std::span<U8 const> octets) {
    while (!octets.empty()) {
      std::size_t const size = random_() % 3 ? octets.size() : 1 + random_() % octets.size();
      if (!reader_.feed(octets.first(size))) return false;
      octets = octets.subspan(size);
    }
    return true;
  }

  Source const& source_;
  std::mt19937& random_;
  std::unique_ptr<Writer> writer_ = std::make_unique<Writer>(source_);
  Reader reader_;
};

class ModelMirror : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Seeds, ModelMirror, testing::Values(1U, 4861U));

TEST_P(ModelMirror, IsTheOriginalAfterEveryDrainOf100000RandomChanges) {
  std::mt19937 random(GetParam());
  std::cout << "seed " << GetParam() << '\n';
  Trees const trees = TreeMutator::modelTrees();
  TreeMutator mutator(trees, [&](unsigned limit) { return static_cast<unsigned>(random() % limit); });

  // An observer that is heard before the source is: now and then it puts back what was removed, or adds another.
  auto const config = Fwk::ptrCast<Config>(trees[0]);
  auto const meddling = Fwk::observe(config, [&](Fwk::Notification const& n) {
    Net::IntfId const* const intfId = n.key.as<Net::IntfId>();
    if (!intfId || random() % 4) return;
    Net::IntfId const key = *intfId;
    config->intfIs(n.key.change() == Fwk::MemberChange::removed ? key : Net::IntfId("another"));
  });

  Source const source(trees);
  Source const tiny(trees, SourceOptions{2000});
  Link fast(source, random);
  Link slow(source, random);
  Link small(tiny, random);
  auto const expectMirrored = [&](Link& link, int step) {
    ASSERT_TRUE(link.sync()) << "step " << step << ": " << link.reader().error().text;
    ASSERT_TRUE(textOf(link.reader().roots()) == textOf(trees)) << "step " << step;
  };
  Fwk::U64 overflows = 0;
  for (int step = 0; step < 100'000; ++step) {
    mutator.step();
    if (random() % 20 == 0) {
      ASSERT_NO_FATAL_FAILURE(expectMirrored(fast, step));
    }
    if (random() % 10 == 0) {
      ASSERT_TRUE((random() % 2 ? slow : small).syncPart()) << "step " << step;
    }
    if (random() % 300 == 0) {
      ASSERT_NO_FATAL_FAILURE(expectMirrored(slow, step));
    }
    if (random() % 100 == 0) {
      ASSERT_NO_FATAL_FAILURE(expectMirrored(small, step));
      overflows = std::max(overflows, small.writer().overflows());
      ASSERT_LE(tiny.pendingOctets(), 2000);
    }
    if (random() % 200 == 0) {
      ASSERT_TRUE((random() % 2 ? fast : slow).breakAndAttach()) << "step " << step;
    }
  }
  EXPECT_GT(overflows, 10);
}

TEST(ModelMirror, EveryValueTypeIsStreamedInTheOrderOfItsAttributes) {
  int valueTypes = 0;
  for (Fwk::TypeRecord const* const type : Fwk::typeRegistry().types()) valueTypes += type->value ? 1 : 0;
  EXPECT_EQ(valueTypes, 7);
  static_assert(Fwk::Streamable<RouterAdvt::PrefixDefault> && Fwk::Streamable<RouterAdvt::LifeTimeHashMap> &&
                Fwk::Streamable<RouterAdvt::RaPacket> && Fwk::Streamable<RouterAdvt::RaPacketPrefixInfo> &&
                Fwk::Streamable<RouterAdvt::RouterNeighbor> && Fwk::Streamable<RouterNeighborRaKey> &&
                Fwk::Streamable<RouterNeighborRa>);
}

template <class T>
std::string hexOf(T const& value) {
  OctetBuffer octets;
  Fwk::OctetSink sink(octets);
  Fwk::StreamCodec<T>::put(sink, value);
  T read{};
  EXPECT_TRUE(Fwk::takeWhole(octets, read));
  EXPECT_TRUE(read == value);
  return StreamText::hex(octets);
}

TEST(ModelMirror, ARowIsItsKeyThenItsTimeAndAKeyItsInterfaceThenItsAddress) {
  RouterNeighborRaKey const key("Et1", Net::Ip6Addr("fe80::1"));
  std::string const keyOctets =
      "14"
      "03457431"
      "fe800000000000000000000000000001";
  EXPECT_EQ(hexOf(key), keyOctets);
  EXPECT_EQ(hexOf(RouterNeighborRa(key, 12.5)), "1d" + keyOctets + "4029000000000000");
}

TEST(ModelMirror, OtherValuesAreTheirAttributesInOrder) {
  EXPECT_EQ(hexOf(RouterAdvt::PrefixDefault()), "00");
  RouterAdvt::LifeTimeHashMap map;
  map.visitedIs(300, true);
  EXPECT_EQ(hexOf(map), "0403ac0201");
  EXPECT_EQ(hexOf(RouterAdvt::RouterNeighbor("Et1", "red", Net::Ip6Addr("fe80::1"))),
            "18"
            "03457431"
            "03726564"
            "fe800000000000000000000000000001");
  RouterAdvt::RaPacketPrefixInfo info(Net::Ip6AddrWithMask("2001:db8::/64"));
  info.onLinkFlagIs(true);
  info.validLifetimeIs(1);
  EXPECT_EQ(hexOf(info),
            "15"
            "20010db800000000000000000000000040"
            "01"
            "00"
            "01"
            "00");
}

/// The order in which a type record lists what a value stores is that of its octets, and with it of the schema.
template <class T>
void expectSameOrder() {
  std::vector<std::string> stored;
  std::apply([&](auto const&... attribute) { (stored.push_back(attribute.name), ...); }, T::storedAttributes());
  std::vector<std::string> recorded;
  for (Fwk::AttributeRecord const& attr : T::typeRecord().attributes)
    if (attr.kind == Fwk::AttributeKind::scalar || attr.kind == Fwk::AttributeKind::collection)
      recorded.push_back(attr.name);
  EXPECT_EQ(stored, recorded) << T::fwkTypeName;
}
TEST(ModelMirror, TypeRecordsListWhatIsStoredInTheSameOrder) {
  expectSameOrder<RouterAdvt::PrefixDefault>();
  expectSameOrder<RouterAdvt::LifeTimeHashMap>();
  expectSameOrder<RouterAdvt::RaPacket>();
  expectSameOrder<RouterAdvt::RaPacketPrefixInfo>();
  expectSameOrder<RouterAdvt::RouterNeighbor>();
  expectSameOrder<RouterNeighborRaKey>();
  expectSameOrder<RouterNeighborRa>();
}

TEST(ModelMirror, EverySettableAttributeAndEveryCollectionAndChildOfAnEntityIsStreamed) {
  int streamed = 0;
  for (Fwk::TypeRecord const* const type : Fwk::typeRegistry().types()) {
    if (type->kind != Fwk::TypeKind::entity || type == &RouterAdvt::Table::RouterNeighborRaStatus::typeRecord())
      continue;
    for (Fwk::AttributeRecord const& attr : type->attributes) {
      EXPECT_EQ(attr.streamed(), attr.settable() || attr.collection || attr.child) << type->name << "::" << attr.name;
      streamed += attr.streamed() ? 1 : 0;
    }
  }
  EXPECT_GT(streamed, 40);
}

TEST(ModelMirror, AnInterfaceThatIsConfiguredInFrontTakesNoOtherOut) {
  auto const configured = [](std::initializer_list<char const*> intfs) {
    auto config = RouterAdvt::configFactory("ra");
    for (char const* const intf : intfs) config->intfIs(intf)->raLifetimeIs(600);
    return config;
  };
  auto const live = configured({"E1", "E2"});
  std::vector<std::string> heard;
  auto const observing = Fwk::observe(live, [&](Fwk::Notification const& n) {
    heard.push_back(n.key.change() == Fwk::MemberChange::removed ? "-" : "+");
    n.key.appendTo(heard.back());
  });
  Fwk::assignTree(configured({"E0", "E1", "E2"}), live);
  EXPECT_THAT(heard, testing::ElementsAre("+E0"));
}

TEST(ModelMirror, OrderIsArbitraryWhereMembersAreFoundByInterfaceOrName) {
  std::vector<std::string> arbitrary;
  for (Fwk::TypeRecord const* const type : Fwk::typeRegistry().types())
    for (Fwk::AttributeRecord const& attr : type->attributes)
      if (attr.memberOrder == Fwk::MemberOrder::arbitrary)
        arbitrary.push_back(type->name + std::string("::") + attr.name);
  EXPECT_THAT(arbitrary,
              testing::UnorderedElementsAre(
                  "RouterAdvt::Config::intf", "RouterAdvt::Config::prefixProfiles", "RouterAdvt::Status::intf",
                  "RouterAdvt::RaPacketStatus::raPacket", "RouterAdvt::RouterNeighborStatus::routerNeighbor",
                  "RouterAdvt::RouterNeighborStatus::neighbor", "RouterAdvt::ProcFileDirDataSet::fileData"));
}

TEST(ModelMirror, ARootIsMadeOfAnyTypeThatHasSomethingToMirror) {
  EXPECT_EQ(registeredRoot("RouterAdvt::Config", "ra")->name(), "ra");
  EXPECT_TRUE(registeredRoot("RouterAdvt::IntfConfig", "Ethernet1"));
  EXPECT_FALSE(registeredRoot("RouterAdvt::Config", std::string(64, 'x')));
  EXPECT_FALSE(registeredRoot("RouterAdvt::RaPacket", "Ethernet1"));
  EXPECT_FALSE(registeredRoot("RouterAdvt::Table::RouterNeighborRaStatus", "ra"));
  EXPECT_FALSE(registeredRoot("RouterAdvt::Nothing", "ra"));
}

// A server with a mirror that has stopped.

TEST(ModelMirrorServer, WithAStoppedMirrorKeepsItsMemoryBoundedAndTheMirrorIsRightAgain) {
  constexpr int interfaces = 10'000;
  auto const config = RouterAdvt::configFactory("ra");
  auto const nameOf = [](int i) { return Net::IntfId("Ethernet" + std::to_string(i)); };
  for (int i = 0; i < interfaces; ++i) config->intfIs(nameOf(i))->prefixesIs(Net::Ip6AddrWithMask("2001:db8::/64"));

  SourceOptions const options{std::size_t{1} << 20};
  Source const source({config}, options);
  Writer running(source);
  Writer stopped(source);
  Reader runningReader(registeredRoot);
  Reader stoppedReader(registeredRoot);
  auto const pass = [](Writer& writer, Reader& reader) {
    OctetBuffer octets;
    while (writer.pending()) {
      octets.clear();
      writer.drain(octets, 65'536);
      ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
    }
    ASSERT_TRUE(reader.synchronized());
  };
  ASSERT_NO_FATAL_FAILURE(pass(running, runningReader));
  ASSERT_NO_FATAL_FAILURE(pass(stopped, stoppedReader));

  for (Fwk::U32 round = 0; round < 5; ++round)
    for (int i = 0; i < interfaces; ++i) {
      auto const intf = config->intfIs(nameOf(i));
      intf->raLifetimeIs(round + 1);
      intf->hopLimitIs(round + 1);
      intf->prefixes(Net::Ip6AddrWithMask("2001:db8::/64"))->noAdvertiseIs(round % 2 == 0);
      if (i % 7 == 0) config->intfDel(nameOf(i));
      ASSERT_LE(source.pendingOctets(), options.maxPendingOctets);
      if (i % 100 == 0) {
        ASSERT_NO_FATAL_FAILURE(pass(running, runningReader));
      }
      if (i % 7 == 0) config->intfIs(nameOf(i))->prefixesIs(Net::Ip6AddrWithMask("2001:db8::/64"));
    }
  ASSERT_NO_FATAL_FAILURE(pass(running, runningReader));
  EXPECT_EQ(running.overflows(), 0);
  EXPECT_EQ(source.pendingOctets(), 0);

  ASSERT_NO_FATAL_FAILURE(pass(stopped, stoppedReader));
  EXPECT_EQ(stopped.overflows(), 1);
  std::string const original = TreeText::of(config);
  EXPECT_TRUE(TreeText::of(runningReader.roots()[0]) == original);
  EXPECT_TRUE(TreeText::of(stoppedReader.roots()[0]) == original);
}

}  // namespace
