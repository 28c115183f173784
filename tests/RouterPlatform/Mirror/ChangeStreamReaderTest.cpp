#include <RouterPlatform/Mirror/ChangeStream.h>
#include <RouterPlatform/Mirror/ChangeStreamFormat.h>
#include <RouterPlatform/Mirror/ChangeStreamSchema.h>
#include <tests/RouterPlatform/Mirror/ChangeStreamModel.h>
#include <tests/RouterPlatform/Mirror/StreamText.h>
#include <tests/RouterPlatform/Mirror/TreeText.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace Fwk::ChangeStream;
using Fwk::OctetBuffer;
using Fwk::OctetSink;
using Fwk::Ptr;
using Fwk::U64;
using Fwk::U8;
using Fwk::ChangeStream::detail::putRecord;
using Fwk::ChangeStream::detail::RecordKind;
using testing::ElementsAre;
using TestModel::Box;
using TestModel::Port;
using TestModel::Rack;

// The octets that docs/formats/change-stream.md describes.

TEST(ChangeStreamFormat, ASnapshotOfAnEntityIsTheseOctets) {
  auto const port = Fwk::create<Port>(Net::IntfId("et1"));
  port->speedIs(300);
  Writer writer{Ptr<Fwk::Entity>(port)};
  OctetBuffer octets;
  writer.drain(octets);
  auto const records = StreamText::records(octets);
  ASSERT_FALSE(records.empty());
  EXPECT_EQ(StreamText::hex(octets).substr(0, 4), "0142");
  std::string const hello = StreamText::hex(records[0].body);
  EXPECT_EQ(hello.substr(0, 18),
            "52747253"
            "74726d0a"
            "01");  // magic, version
  // The schema: type `TestModel::Port` with attributes intfId, a key of type IntfId, and speed, a scalar of type U32.
  EXPECT_EQ(hello.substr(34),
            "30"
            "0f546573744d6f64656c3a3a506f7274"
            "11"
            "00"
            "06696e74664964"
            "01"
            "06496e74664964"
            "00"
            "0d"
            "01"
            "057370656564"
            "02"
            "03553332"
            "00");
  EXPECT_THAT(StreamText::lines(octets),
              ElementsAre("hello", "batch 01", "begin", "root 000f546573744d6f64656c3a3a506f7274657431", "value 01ac02",
                          "leave", "end", "mark"));
}

TEST(ChangeStreamFormat, TheSchemaHashIsTheSameInEveryProcess) {
  Writer writer{Ptr<Fwk::Entity>(Fwk::create<Port>(Net::IntfId("et1")))};
  OctetBuffer octets;
  writer.drain(octets);
  EXPECT_EQ(StreamText::hex(StreamText::records(octets)[0].body.subspan(9, 8)), "6bf7cd1a3b45761b");
}

TEST(ChangeStreamFormat, AChangeOfEachKindIsTheseOctets) {
  auto const rack = Fwk::create<Rack>("r");
  auto const box = rack->boxesIs("x");
  box->labelsIs("k", "v");
  box->diskIs("d");
  Writer writer{rack};
  OctetBuffer octets;
  writer.drain(octets);
  octets.clear();
  box->numberIs(5);
  box->labelsIs("k", "w");
  box->labelsIs("l", "");
  box->addressesIs(Net::Ip6Addr("::1"));
  box->portsIs("p");
  box->diskIs("e");
  rack->topIs("t")->diskIs("f");
  rack->topDel();
  writer.drain(octets);
  EXPECT_THAT(StreamText::lines(octets),
              ElementsAre("batch 02", "at 0000020178", "value 0205", "row 0d02016b0177", "lastRow 0d02016c00",
                          "lastRow 0f1000000000000000000000000000000001", "member 0c0170", "value 0100", "leave",
                          "member 1065", "leave", "at 00", "removed 02", "mark"));
}

// Octets that are no stream, or no stream for this reader.

/// A stream written by hand, behind a start that the reader accepts.
struct HandWritten {
  OctetBuffer octets;
  OctetSink sink{octets};

  HandWritten() {
    Writer writer{Ptr<Fwk::Entity>(Fwk::create<Rack>("rack"))};
    OctetBuffer whole;
    writer.drain(whole);
    octets.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(StreamText::records(whole)[0].end));
  }
  HandWritten& record(RecordKind kind, OctetBuffer const& body = {}) {
    putRecord(sink, kind, [&] { sink.octets(body); });
    return *this;
  }
  /// An empty snapshot: the mirror is an empty rack.
  HandWritten& snapshot() {
    record(RecordKind::batch, {1}).record(RecordKind::begin);
    putRecord(sink, RecordKind::root, [&] {
      sink.number(0);
      sink.block([&] { sink.text(Rack::fwkTypeName); });
      sink.text("rack");
    });
    return record(RecordKind::leave).record(RecordKind::end);
  }
};

struct ErrorRow {
  char const* name;
  ReadErrorKind kind;
  void (*write)(HandWritten&);
  friend void PrintTo(ErrorRow const& row, std::ostream* os) { *os << row.name; }
};
using K = RecordKind;
ErrorRow const errorRows[] = {
    {"AnotherStart", ReadErrorKind::malformed, [](HandWritten& s) { s.octets[3] ^= 1; }},
    {"AStartOfAnotherKind", ReadErrorKind::malformed, [](HandWritten& s) { s.octets[0] = 2; }},
    {"AStartThatIsTooShort", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.octets.clear();
       s.record(K::hello, {0x52, 0x74});
     }},
    {"AnotherVersion", ReadErrorKind::incompatible, [](HandWritten& s) { s.octets[11] = 2; }},
    {"ASecondStart", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::hello, {1}); }},
    {"ASizeThatIsNoNumber", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.octets.insert(s.octets.end(), {2, 0x80, 0x00});
     }},
    {"ASizeOfElevenOctets", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.octets.insert(s.octets.end(), {2, 128, 128, 128, 128, 128, 128, 128, 128, 128, 128, 1});
     }},
    {"ARecordTooLarge", ReadErrorKind::tooLarge,
     [](HandWritten& s) {
       s.octets.insert(s.octets.end(), {2, 0x81, 0x80, 0x80, 0x08});
     }},
    {"ABatchTooFar", ReadErrorKind::gap, [](HandWritten& s) { s.snapshot().record(K::batch, {3}); }},
    {"ABatchAgain", ReadErrorKind::gap, [](HandWritten& s) { s.snapshot().record(K::batch, {1}); }},
    {"ABatchWithoutNumber", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::batch); }},
    {"ARootOutsideASnapshot", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.record(K::root, {0, 0});
     }},
    {"ARootWithoutPlace", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::begin).record(K::root); }},
    {"ARootOutOfOrder", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.record(K::begin).record(K::root, {1, 0});
     }},
    {"ARootOfAnotherType", ReadErrorKind::incompatible,
     [](HandWritten& s) {
       s.record(K::begin).record(K::root, {0, 1, 'x'});
     }},
    {"ARootInARoot", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.record(K::begin);
       for (U8 const index : {U8{0}, U8{1}})
         putRecord(s.sink, K::root, [&] {
           s.sink.number(index);
           s.sink.block([&] { s.sink.text(Rack::fwkTypeName); });
         });
     }},
    {"AnEndOfNoSnapshot", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::end); }},
    {"AnEndInARoot", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.record(K::begin);
       putRecord(s.sink, K::root, [&] {
         s.sink.number(0);
         s.sink.block([&] { s.sink.text(Rack::fwkTypeName); });
       });
       s.record(K::end);
     }},
    {"AMarkBeforeASnapshot", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::mark); }},
    {"AMarkInASnapshot", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::begin).record(K::mark); }},
    {"AMarkInAMember", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::mark);
     }},
    {"AChangeBeforeASnapshot", ReadErrorKind::malformed, [](HandWritten& s) { s.record(K::at, {0}); }},
    {"AChangeOfNothing", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::value, {0, 1});
     }},
    {"AWayInAMember", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::at, {0});
     }},
    {"AWayFromNoRoot", ReadErrorKind::malformed, [](HandWritten& s) { s.snapshot().record(K::at, {1}); }},
    {"AWayToNoMember", ReadErrorKind::lost,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0, 0, 2, 1, 'x'});
     }},
    {"AWayToNoChild", ReadErrorKind::lost,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0, 2, 1, 'x'});
     }},
    {"AWayToAChildOfAnotherName", ReadErrorKind::lost,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {2, 'y'}).record(K::leave).record(K::at, {0, 2, 1, 'x'});
     }},
    {"AWayIntoAValue", ReadErrorKind::lost,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0, 1, 3, 2, 1, 1});
     }},
    {"AWayIntoAScalar", ReadErrorKind::lost,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::leave);
       s.record(K::at, {0, 0, 2, 1, 'x', 2, 1, 'y'});
     }},
    {"AWayCutInItsKey", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0, 0, 2, 1});
     }},
    {"NothingToLeave", ReadErrorKind::malformed,
     [](HandWritten& s) { s.snapshot().record(K::at, {0}).record(K::leave); }},
    {"AValueOfACollection", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::value, {0, 1});
     }},
    {"AMemberOfACollectionOfValues", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {1, 2, 1, 1});
     }},
    {"AMemberOfAScalar", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::member, {2, 'y'});
     }},
    {"ARowOfAScalar", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::row, {2, 1, 'y', 1});
     }},
    {"ARemovalOfAScalar", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::removed, {2, 'y'});
     }},
    {"ARowOfACollectionOfEntities", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::row, {0, 2, 1, 'x'});
     }},
    {"ARowWithAMalformedKey", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::row, {1, 1, 5, 1, 0});
     }},
    {"ARowWithAMalformedValue", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::row, {1, 3, 2, 1, 1, 9});
     }},
    {"AMalformedKey", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 9, 'x'});
     }},
    {"AMalformedKeyToRemove", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::removed, {0, 9, 'x'});
     }},
    {"AChildNameOf64Octets", ReadErrorKind::malformed,
     [](HandWritten& s) {
       OctetBuffer body(65, 'x');
       body[0] = 2;
       s.snapshot().record(K::at, {0}).record(K::member, body);
     }},
    {"AMalformedScalar", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::value, {0, 7});
     }},
    {"AScalarWithAnOctetTooMany", ReadErrorKind::malformed,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0}).record(K::member, {0, 1, 'x'}).record(K::value, {0, 1, 1});
     }},
    {"AMemberThatRefusesToBeMade", ReadErrorKind::refused,
     [](HandWritten& s) {
       s.snapshot()
           .record(K::at, {0})
           .record(K::member, {0, 1, 'x'})
           .record(K::member, {12, 6, 'b', 'r', 'o', 'k', 'e', 'n'});
     }},
    {"MembersTooDeep", ReadErrorKind::tooLarge,
     [](HandWritten& s) {
       s.snapshot().record(K::at, {0});
       for (int i = 0; i < 100; ++i) s.record(K::member, {99, 0});
     }},
    {"AWayTooDeep", ReadErrorKind::tooLarge,
     [](HandWritten& s) {
       OctetBuffer body{0};
       for (int i = 0; i < 100; ++i) body.insert(body.end(), {99, 0});
       s.snapshot().record(K::at, body);
     }},
};

class ReadError : public testing::TestWithParam<ErrorRow> {};
INSTANTIATE_TEST_SUITE_P(Rows, ReadError, testing::ValuesIn(errorRows));

TEST_P(ReadError, EndsTheReadingUntilTheNextAttachment) {
  HandWritten stream;
  GetParam().write(stream);
  auto const mirror = Fwk::create<Rack>("rack");
  Reader reader(mirror, ReaderOptions{std::size_t{1} << 20});
  EXPECT_FALSE(reader.feed(stream.octets));
  EXPECT_EQ(reader.error().kind, GetParam().kind) << reader.error().text;
  EXPECT_FALSE(reader.error().text.empty());
  EXPECT_LT(reader.error().offset, stream.octets.size());
  EXPECT_FALSE(reader.synchronized());
  EXPECT_FALSE(reader.feed(stream.octets));

  auto const original = Fwk::create<Rack>("rack");
  original->boxesIs("y")->numberIs(3);
  OctetBuffer again;
  Writer(original).drain(again);
  reader.attach();
  EXPECT_TRUE(reader.feed(again)) << reader.error().text;
  EXPECT_TRUE(reader.synchronized());
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(original));
}

/// A rack and its mirror, which may have 5 members.
struct BoundedMembers : testing::Test {
  Ptr<Rack> const original = Fwk::create<Rack>("rack");
  Ptr<Rack> const mirror = Fwk::create<Rack>("rack");
  Writer writer{original};
  Reader reader{mirror, {.maxMembers = 5}};

  bool sync() {
    OctetBuffer octets;
    writer.drain(octets);
    return reader.feed(octets);
  }
};

TEST_F(BoundedMembers, EntitiesChildrenAndValuesCount) {
  original->boxesIs("a")->portsIs("E1");
  original->boxesIs("b")->diskIs("d");
  original->topIs("t");
  ASSERT_TRUE(sync()) << reader.error().text;
  original->boxes("a")->labelsIs("x", "1");
  EXPECT_FALSE(sync());
  EXPECT_EQ(reader.error().kind, ReadErrorKind::tooLarge);
  EXPECT_EQ(reader.error().text, "more than 5 members");
}

TEST_F(BoundedMembers, MembersThatLeaveMakeRoomWithEverythingBelowThem) {
  for (char const* const round : {"a", "b", "c"}) {
    Ptr<Box> const box = original->boxesIs(round);
    box->portsIs("E1");
    box->labelsIs("x", "1");
    box->labelsIs("x", "2");
    box->diskIs(round);
    original->topIs(round);
    ASSERT_TRUE(sync()) << reader.error().text;
    original->boxesDel(round);
    ASSERT_TRUE(sync()) << reader.error().text;
  }
}

TEST_F(BoundedMembers, ASnapshotThatMeetsAFullMirrorReplacesIt) {
  for (char const* const key : {"a", "b", "c", "d", "e"}) original->boxesIs(key);
  ASSERT_TRUE(sync());
  original->boxesDelAll();
  for (char const* const key : {"e", "f", "g"}) original->boxesIs(key)->numberIs(7);
  writer.restart();
  reader.attach();
  EXPECT_TRUE(sync()) << reader.error().text;
  EXPECT_EQ(TreeText::of(mirror), TreeText::of(original));
}

TEST_F(BoundedMembers, MembersThatTheMirrorHadCount) {
  auto const full = Fwk::create<Rack>("rack");
  for (char const* const key : {"a", "b", "c", "d", "e"}) full->boxesIs(key);
  Reader ofFull(full, {.maxMembers = 5});
  for (char const* const key : {"a", "b", "c", "d", "e", "f"}) original->boxesIs(key);
  OctetBuffer octets;
  writer.drain(octets);
  EXPECT_FALSE(ofFull.feed(octets));
  EXPECT_EQ(ofFull.error().kind, ReadErrorKind::tooLarge);
}

TEST(ChangeStreamReader, SaysWhereTheRecordIsThatItCannotRead) {
  HandWritten stream;
  stream.snapshot();
  std::size_t const good = stream.octets.size();
  stream.record(K::batch, {9});
  Reader reader(Fwk::create<Rack>("rack"));
  EXPECT_TRUE(reader.feed(std::span<U8 const>(stream.octets).first(good - 3)));
  EXPECT_FALSE(reader.feed(std::span<U8 const>(stream.octets).subspan(good - 3)));
  EXPECT_EQ(reader.error().offset, good);
}

TEST(ChangeStreamReader, ALostDrainIsNoticedByTheNext) {
  auto const rack = Fwk::create<Rack>("rack");
  Writer writer{rack};
  Reader reader(Fwk::create<Rack>("rack"));
  OctetBuffer octets;
  writer.drain(octets);
  rack->boxesIs("lost");
  OctetBuffer lost;
  writer.drain(lost);
  rack->topIs("t");
  writer.drain(octets);
  EXPECT_FALSE(reader.feed(octets));
  EXPECT_EQ(reader.error().kind, ReadErrorKind::gap);
}

TEST(ChangeStreamReader, AMadeRootThatTheNextStreamDoesNotHaveIsLetGo) {
  Reader reader([](std::string_view, std::string_view) { return Ptr<Fwk::Entity>(Fwk::create<Rack>("rack")); });
  for (std::size_t const count : {2U, 1U}) {
    std::vector<Ptr<Fwk::Entity>> roots;
    while (roots.size() < count) roots.emplace_back(Fwk::create<Rack>("rack"));
    Writer writer{Fwk::ChangeStream::Source(roots)};
    OctetBuffer octets;
    writer.drain(octets);
    reader.attach();
    EXPECT_TRUE(reader.feed(octets)) << reader.error().text;
    EXPECT_EQ(reader.roots().size(), count);
  }
}

TEST(ChangeStreamReader, AMadeRootIsMadeAnewForAnotherKey) {
  Reader reader([](std::string_view, std::string_view key) {
    return Ptr<Fwk::Entity>(Fwk::create<Rack>(Fwk::Name(std::string(key))));
  });
  for (char const* const name : {"a", "b"}) {
    Writer writer{Ptr<Fwk::Entity>(Fwk::create<Rack>(name))};
    OctetBuffer octets;
    writer.drain(octets);
    reader.attach();
    ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
    EXPECT_EQ(reader.roots().at(0)->name(), name);
  }
}

TEST(ChangeStreamReader, ARootThatTheReaderDoesNotHaveIsPassedOver) {
  auto const original = Fwk::create<Rack>("rack");
  original->boxesIs("x")->numberIs(3);
  OctetBuffer octets;
  Writer(original).drain(octets);
  Reader reader{Ptr<Fwk::Entity>()};
  EXPECT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_TRUE(reader.synchronized());
}

TEST(ChangeStreamReader, GoesOnWhereItIsMovedTo) {
  auto const mirror = Fwk::create<Rack>("rack");
  HandWritten stream;
  stream.snapshot().record(K::mark);
  Reader first(mirror);
  EXPECT_TRUE(first.feed(std::span<U8 const>(stream.octets).first(30)));
  Reader second(std::move(first));
  Reader third{Ptr<Fwk::Entity>()};
  third = std::move(second);
  EXPECT_TRUE(third.feed(std::span<U8 const>(stream.octets).subspan(30))) << third.error().text;
  EXPECT_TRUE(third.synchronized());
}

TEST(ChangeStreamReader, RecordsOfAnUnknownKindArePassedOver) {
  HandWritten stream;
  stream.snapshot().record(static_cast<RecordKind>(200), {1, 2, 3}).record(K::mark);
  Reader reader(Fwk::create<Rack>("rack"));
  EXPECT_TRUE(reader.feed(stream.octets)) << reader.error().text;
  EXPECT_TRUE(reader.synchronized());
}

TEST(ChangeStreamReader, ASizeIsNoReasonToAllocate) {
  HandWritten stream;
  stream.octets.insert(stream.octets.end(), {2, 0xff, 0xff, 0xff, 0x07});  // 16 MiB less one: allowed, not yet received
  Reader reader(Fwk::create<Rack>("rack"));
  EXPECT_TRUE(reader.feed(stream.octets));
  EXPECT_FALSE(reader.error());
}

// Programs of different versions.

/// `Gadget` in two versions.
template <int version>
class Gadget final : public Fwk::Entity {
 public:
  enum Attr : Fwk::AttrId { numberAttr = Fwk::firstOwnAttr, spotAttr, nextAttr, partsAttr, rowsAttr, partAttr };
  explicit Gadget(Fwk::Name name) : name_(name) {}
  Fwk::Name name() const override { return name_; }
  Fwk::Name const& key() const noexcept { return name_; }

  Fwk::U32 number() const { return number_; }
  void numberIs(Fwk::U32 v) { attrIs(number_, v, numberAttr); }
  TestModel::Point const& spot() const { return spot_; }
  void spotIs(TestModel::Point const& v) { attrIs(spot_, v, spotAttr); }
  Fwk::String const& next() const { return next_; }
  void nextIs(Fwk::String const& v) { attrIs(next_, v, nextAttr); }
  Fwk::U64 wide() const { return number_; }
  void wideIs(Fwk::U64 v) { numberIs(static_cast<Fwk::U32>(v)); }

  static constexpr char const* fwkTypeName = "TestModel::Gadget";
  static Fwk::TypeRecord const& typeRecord() {
    using namespace Fwk;
    static constinit LiveCount live;
    static constexpr auto attrs = [] {
      if constexpr (version == 1)
        return attributes<Gadget>(scalar<&Gadget::number, &Gadget::numberIs>("number"),
                                  scalar<&Gadget::spot, &Gadget::spotIs>("spot"));
      else if constexpr (version == 2)
        return attributes<Gadget>(scalar<&Gadget::number, &Gadget::numberIs>("number"),
                                  scalar<&Gadget::spot, &Gadget::spotIs>("spot"),
                                  scalar<&Gadget::next, &Gadget::nextIs>("next"), collection<&Gadget::parts>("parts"),
                                  collection<&Gadget::rows>("rows"), child<&Gadget::part>("part"));
      else if constexpr (version == 3)
        return attributes<Gadget>(scalar<&Gadget::wide, &Gadget::wideIs>("number"));
      else
        return attributes<Gadget>(scalar<&Gadget::number, &Gadget::numberIs>("count"));
    }();
    static constexpr TypeRecord record = entityRecord<Gadget, Name>(attrs, live);
    return record;
  }
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

  Fwk::EntityCollection<Fwk::Name, Box> parts{*this, partsAttr};
  Fwk::ValueCollection<Fwk::String, Fwk::String> rows{*this, rowsAttr};
  Fwk::OwnedChild<Box> part{*this, partAttr};

 private:
  ~Gadget() override = default;
  Fwk::Name name_;
  Fwk::U32 number_ = 0;
  TestModel::Point spot_;
  Fwk::String next_;
};

TEST(ChangeStreamVersions, AnOlderReaderPassesOverWhatItDoesNotKnow) {
  auto const original = Fwk::create<Gadget<2>>("g");
  auto const mirror = Fwk::create<Gadget<1>>("g");
  Writer writer{original};
  Reader reader(mirror);
  original->parts.memberIs("before")->portsIs("p")->speedIs(1);
  original->rows.memberIs("k", "v");
  original->part.childIs("c")->numberIs(2);
  original->nextIs("next");
  original->numberIs(1);
  OctetBuffer octets;
  writer.drain(octets);
  original->parts.memberIs("after")->portsIs("q");
  original->parts.member("before")->ports("p")->speedIs(2);
  original->rows.memberIs("k", "w");
  original->rows.memberDel("k");
  original->part.child()->numberIs(3);
  original->part.childDel();
  original->nextIs("");
  original->parts.memberDel("before");
  original->spotIs(TestModel::Point(3, 4));
  original->numberIs(7);
  writer.drain(octets);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_TRUE(reader.synchronized());
  EXPECT_EQ(mirror->number(), 7);
  EXPECT_EQ(mirror->spot(), TestModel::Point(3, 4));
}

TEST(ChangeStreamVersions, ANewerReaderLeavesWhatItIsNotToldOfAtItsDefault) {
  auto const original = Fwk::create<Gadget<1>>("g");
  auto const mirror = Fwk::create<Gadget<2>>("g");
  original->numberIs(7);
  OctetBuffer octets;
  Writer(original).drain(octets);
  Reader reader(mirror);
  ASSERT_TRUE(reader.feed(octets)) << reader.error().text;
  EXPECT_EQ(mirror->number(), 7);
  EXPECT_EQ(mirror->next(), "");
}

template <int version>
void expectIncompatible() {
  OctetBuffer octets;
  Writer(Ptr<Fwk::Entity>(Fwk::create<Gadget<version>>("g"))).drain(octets);
  Reader reader(Fwk::create<Gadget<1>>("g"));
  EXPECT_FALSE(reader.feed(octets));
  EXPECT_EQ(reader.error().kind, ReadErrorKind::incompatible);
  EXPECT_EQ(reader.error().text, "another type of TestModel::Gadget::number");
}
TEST(ChangeStreamVersions, AnAttributeOfAnotherTypeIsAnError) { expectIncompatible<3>(); }
TEST(ChangeStreamVersions, AnAttributeOfAnotherNameIsAnError) { expectIncompatible<4>(); }

TEST(ChangeStreamVersions, ASchemaCutAnywhereIsAnError) {
  Writer writer{Ptr<Fwk::Entity>(Fwk::create<Gadget<2>>("g"))};
  OctetBuffer whole;
  writer.drain(whole);
  auto const hello = StreamText::records(whole)[0].body;
  std::size_t errors = 0;
  for (std::size_t size = 17; size < hello.size(); ++size) {
    OctetBuffer octets;
    OctetSink sink(octets);
    putRecord(sink, RecordKind::hello, [&] { sink.octets(hello.first(size)); });
    Reader reader(Fwk::create<Gadget<1>>("g"));
    if (!reader.feed(octets)) ++errors;
  }
  EXPECT_GE(errors, hello.size() - 17 - 10);  // a cut between two types gives a shorter schema
}

// Schemas written by hand.

using Fwk::ChangeStream::detail::Schema;
using Fwk::ChangeStream::detail::SchemaMatch;

OctetBuffer schemaAttribute(U8 place, char const* name, U8 kind, char const* type, char const* keyType) {
  OctetBuffer octets;
  OctetSink sink(octets);
  sink.number(place);
  sink.block([&] { sink.text(name); });
  sink.octets(OctetBuffer{kind});
  sink.block([&] { sink.text(type); });
  sink.block([&] { sink.text(keyType); });
  return octets;
}

/// How a schema of one type with one attribute agrees with that of a `Gadget`, of the second version.
SchemaMatch matchWithGadget(char const* typeName, std::span<U8 const> attribute) {
  OctetBuffer octets;
  OctetSink sink(octets);
  sink.block([&] {
    sink.block([&] { sink.text(typeName); });
    sink.block([&] { sink.octets(attribute); });
  });
  Fwk::TypeRecord const* const type = &Gadget<2>::typeRecord();
  Fwk::String difference;
  return compareSchema(Schema(std::span(&type, 1)), Fwk::OctetSource(octets), difference);
}

TEST(ChangeStreamSchema, AnAttributeCutAnywhereIsMalformed) {
  OctetBuffer const attribute = schemaAttribute(0, "count", 2, "U32", "");
  for (std::size_t size = 0; size < attribute.size(); ++size)
    EXPECT_EQ(matchWithGadget("TestModel::Unknown", std::span(attribute).first(size)), SchemaMatch::malformed) << size;
  EXPECT_EQ(matchWithGadget("TestModel::Unknown", attribute), SchemaMatch::compatible);
}

TEST(ChangeStreamSchema, ATypeCutInItsNameOrItsAttributeIsMalformed) {
  for (OctetBuffer const& octets : {OctetBuffer{1, 5}, OctetBuffer{3, 1, 'x', 5}}) {
    Fwk::String difference;
    EXPECT_EQ(compareSchema(Schema({}), Fwk::OctetSource(octets), difference), SchemaMatch::malformed);
  }
}

TEST(ChangeStreamSchema, AnAttributeIsTheSameInNameKindTypeAndKeyType) {
  auto const match = [](char const* name, U8 kind, char const* type, char const* keyType) {
    return matchWithGadget("TestModel::Gadget", schemaAttribute(4, name, kind, type, keyType));
  };
  EXPECT_EQ(match("rows", 4, "String", "String"), SchemaMatch::compatible);
  EXPECT_EQ(match("lines", 4, "String", "String"), SchemaMatch::different);
  EXPECT_EQ(match("rows", 5, "String", "String"), SchemaMatch::different);
  EXPECT_EQ(match("rows", 4, "U32", "String"), SchemaMatch::different);
  EXPECT_EQ(match("rows", 4, "String", "U32"), SchemaMatch::different);
}

}  // namespace
