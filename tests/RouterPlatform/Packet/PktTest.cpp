#include <RouterPlatform/Packet/Pkt.h>
#include <RouterPlatform/Packet/PktManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

namespace {

using namespace Net;
using Fwk::Ptr;
using testing::Each;

class PktTest : public testing::Test {
 protected:
  Ptr<Pkt> filled(std::size_t size) {
    std::vector<U8> octets(size);
    std::iota(octets.begin(), octets.end(), U8{1});
    auto pkt = manager_.newPkt();
    pkt->dataIs(octets);
    return pkt;
  }
  /// The next packet gets a buffer full of 0xee.
  void recycleDirty() {
    auto const dirty = manager_.newPkt();
    dirty->reserveHeadData(PktManager::newPktCapacity - Pkt::minTailRoom);
    dirty->trimTailData(-16);
    std::memset(dirty->data(), 0xee, dirty->size());
  }
  static std::span<U8 const> tail(Pkt const& pkt) { return {pkt.data() + pkt.size(), Pkt::minTailRoom}; }

  PktManager manager_;
};
using PktDeathTest = PktTest;

TEST_F(PktTest, IsEmptyAtFirst) {
  auto const pkt = manager_.newPkt();
  EXPECT_EQ(pkt->size(), 0U);
  EXPECT_EQ(pkt->ip6Hdr(), nullptr);
  EXPECT_EQ(pkt->icmp6MsgLen(), 0U);
  EXPECT_GE(pkt->tailRoom(), Pkt::minTailRoom);
}

TEST_F(PktTest, ReservesZeroOctetsAtTheHead) {
  auto const pkt = manager_.newPkt();
  U8* const head = pkt->reserveHeadData(1536);
  EXPECT_EQ(head, pkt->data());
  EXPECT_EQ(pkt->size(), 1536U);
  EXPECT_THAT(std::as_const(*pkt).octets(), Each(0));
}

TEST_F(PktTest, KeepsZeroTailRoomBehindAReservation) {
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(100);
  EXPECT_GE(pkt->tailRoom(), Pkt::minTailRoom);
  EXPECT_THAT(tail(*pkt), Each(0));
}

TEST_F(PktTest, ZeroesWhatARecycledBufferHeld) {
  recycleDirty();
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(500);
  EXPECT_THAT(pkt->octets(), Each(0));
  EXPECT_THAT(tail(*pkt), Each(0));
}

TEST_F(PktTest, ReservesOctetsAsTheyAreWithZerosBehindThem) {
  recycleDirty();
  auto const pkt = manager_.newPkt();
  U8* const head = pkt->reserveHeadDataUninitialized(500);
  EXPECT_EQ(head, pkt->data());
  EXPECT_EQ(pkt->size(), 500U);
  EXPECT_THAT(pkt->octets(), Each(0xee));
  EXPECT_THAT(tail(*pkt), Each(0));
}

TEST_F(PktTest, FillsTheHeadRoomWithoutMoving) {
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(10);
  U8 const* const end = pkt->data() + pkt->size();
  pkt->reserveHeadData(pkt->headRoom());
  EXPECT_EQ(pkt->headRoom(), 0U);
  EXPECT_EQ(pkt->data() + pkt->size(), end);
}

TEST_F(PktTest, MovesTheDataWhenTheHeadRoomIsTooSmall) {
  auto const pkt = filled(200);
  pkt->reserveHeadData(9000);
  ASSERT_EQ(pkt->size(), 9200U);
  EXPECT_THAT(pkt->octets().first(9000), Each(0));
  for (std::size_t i = 0; i < 200; ++i) ASSERT_EQ(pkt->data()[9000 + i], static_cast<U8>(1 + i));
  EXPECT_GE(pkt->tailRoom(), Pkt::minTailRoom);
}

TEST_F(PktTest, MovesTheDataWhenTheTailRoomIsUsedUp) {
  auto const pkt = filled(8);
  pkt->trimTailData(-static_cast<Fwk::S64>(pkt->tailRoom()));
  U64 const size = pkt->size();
  pkt->reserveHeadData(8);
  EXPECT_EQ(pkt->size(), size + 8);
  EXPECT_EQ(pkt->data()[8], 1);
  EXPECT_GE(pkt->tailRoom(), Pkt::minTailRoom);
}

TEST_F(PktTest, TrimsDataOffItsTail) {
  auto const pkt = filled(10);
  pkt->trimTailData(4);
  EXPECT_THAT(pkt->octets(), testing::ElementsAre(1, 2, 3, 4, 5, 6));
  pkt->trimTailData(0);
  EXPECT_EQ(pkt->size(), 6U);
  pkt->trimTailData(6);
  EXPECT_EQ(pkt->size(), 0U);
}

TEST_F(PktTest, GrowsIntoTheTailRoomByANegativeTrim) {
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(90);
  pkt->data()[90] = 7;  // written past the end, as into room that is known to be there
  pkt->trimTailData(-9);
  EXPECT_EQ(pkt->size(), 99U);
  EXPECT_EQ(pkt->data()[90], 7);
}

TEST_F(PktTest, HoldsACopyOfGivenOctets) {
  std::vector<U8> octets{1, 2, 3};
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(50);
  pkt->dataIs(octets);
  octets[0] = 9;
  EXPECT_THAT(pkt->octets(), testing::ElementsAre(1, 2, 3));
  pkt->dataIs({});
  EXPECT_EQ(pkt->size(), 0U);
}

TEST_F(PktTest, HoldsMoreThanANewBufferDoes) {
  auto const pkt = filled(65590);
  EXPECT_EQ(pkt->size(), 65590U);
  EXPECT_EQ(pkt->data()[65589], static_cast<U8>(65590));
}

TEST_F(PktTest, LocatesItsHeaders) {
  auto const pkt = filled(100);
  pkt->ip6HdrOffsetIs(14);
  pkt->icmp6MsgIs(54, 46);
  EXPECT_EQ(pkt->ip6Hdr(), static_cast<void*>(pkt->data() + 14));
  EXPECT_EQ(pkt->icmp6Hdr(), static_cast<void*>(pkt->data() + 54));
  EXPECT_EQ(pkt->icmp6MsgLen(), 46U);
  pkt->icmp6Hdr()->code = 77;
  EXPECT_EQ(pkt->data()[55], 77);
  EXPECT_EQ(pkt->headerAt<Icmp6Hdr>(54).code, 77);
}

TEST_F(PktTest, GivesTheOctetsOfTheMessage) {
  auto const pkt = filled(100);
  pkt->icmp6MsgIs(54, 40);
  EXPECT_EQ(pkt->icmp6Offset(), 54U);
  EXPECT_EQ(pkt->icmp6Octets().data(), pkt->data() + 54);
  EXPECT_EQ(pkt->icmp6Octets().size(), 40U);
}

TEST_F(PktTest, WithoutALocatedMessageThereAreNoOctetsOfOne) {
  auto const pkt = filled(100);
  EXPECT_EQ(pkt->icmp6Offset(), 0U);
  EXPECT_TRUE(pkt->icmp6Octets().empty());
}

TEST_F(PktTest, HeadersMoveWithTheData) {
  auto const pkt = filled(100);
  pkt->ip6HdrOffsetIs(14);
  pkt->icmp6MsgIs(54, 46);
  pkt->reserveHeadData(4);
  EXPECT_EQ(pkt->icmp6Hdr()->type, 55);
  pkt->reserveHeadData(5000);
  EXPECT_EQ(pkt->icmp6Hdr()->type, 55);
  EXPECT_EQ(pkt->ip6Hdr(), static_cast<void*>(pkt->data() + 5018));
  EXPECT_EQ(pkt->icmp6MsgLen(), 46U);
}

TEST_F(PktTest, TheMessageIsNeverLongerThanTheData) {
  auto const pkt = filled(100);
  pkt->ip6HdrOffsetIs(14);
  pkt->icmp6MsgIs(54, 46);
  pkt->trimTailData(10);
  EXPECT_EQ(pkt->icmp6MsgLen(), 36U);
  pkt->trimTailData(33);
  EXPECT_EQ(pkt->icmp6MsgLen(), 0U) << "3 octets are no header";
  EXPECT_NE(pkt->ip6Hdr(), nullptr);
  pkt->trimTailData(4);
  EXPECT_EQ(pkt->ip6Hdr(), nullptr);
}

TEST_F(PktTest, WithoutALocatedMessageTheHeaderIsWritableAllTheSame) {
  auto const pkt = manager_.newPkt();
  pkt->icmp6Hdr()->checksum = 0x1234;
  EXPECT_EQ(pkt->icmp6Hdr()->checksum, 0x1234);
}

TEST_F(PktTest, NewDataForgetsTheHeaders) {
  auto const pkt = filled(100);
  pkt->ip6HdrOffsetIs(14);
  pkt->icmp6MsgIs(54, 46);
  pkt->dataIs(std::vector<U8>(100));
  EXPECT_EQ(pkt->ip6Hdr(), nullptr);
  EXPECT_EQ(pkt->icmp6MsgLen(), 0U);
}

TEST_F(PktDeathTest, TrimmingMoreThanThereIsStopsTheProcess) {
  auto const pkt = filled(10);
  EXPECT_DEATH(pkt->trimTailData(11), "assertion \"static_cast<U64>\\(count\\) <= size_\" failed");
}

TEST_F(PktDeathTest, GrowingPastTheTailRoomStopsTheProcess) {
  auto const pkt = filled(10);
  EXPECT_DEATH(pkt->trimTailData(-1 - static_cast<Fwk::S64>(pkt->tailRoom())), "assertion \"added <= tailRoom\\(\\)\"");
  EXPECT_DEATH(pkt->trimTailData(std::numeric_limits<Fwk::S64>::min()), "assertion \"added <= tailRoom\\(\\)\"");
}

TEST_F(PktTest, ATrimmedZeroTailStaysZeroForTheNextPacket) {
  {
    auto const pkt = manager_.newPkt();
    std::memset(pkt->reserveHeadData(1500), 0xab, 100);
    pkt->trimZeroTail(1400);
    EXPECT_EQ(pkt->size(), 100U);
  }
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(1500);
  pkt->trimTailData(-16);
  EXPECT_THAT(std::as_const(*pkt).octets(), Each(0));
}

// Only octets that were data are cleared: a write behind the back of the packet tells.
TEST_F(PktTest, ClearsNoMoreThanEarlierDataSoiled) {
  U8* notData = nullptr;
  {
    auto const pkt = manager_.newPkt();
    notData = pkt->reserveHeadData(1500) + 100;
    pkt->trimZeroTail(1400);
    *notData = 0xab;
  }
  auto const pkt = manager_.newPkt();
  U8 const* const data = pkt->reserveHeadData(1500);
  ASSERT_EQ(data + 100, notData);
  EXPECT_EQ(*notData, 0xab);
}

TEST_F(PktTest, ReservesZeroOctetsWhateverTheFormerDataCovered) {
  for (std::size_t const former : {1U, 16U, 700U, 2000U})
    for (Fwk::S64 const trimmed : {-16, 0, 1}) {
      {
        auto const pkt = manager_.newPkt();
        pkt->dataIs(std::vector<U8>(former, 0xab));
        pkt->trimTailData(trimmed);
        std::memset(pkt->data(), 0xab, pkt->size());
      }
      auto const pkt = manager_.newPkt();
      pkt->reserveHeadData(100);
      pkt->reserveHeadData(900);
      pkt->trimTailData(-16);
      EXPECT_THAT(std::as_const(*pkt).octets(), Each(0)) << former << ' ' << trimmed;
    }
}

TEST_F(PktTest, OctetsTrimmedInTheMiddleOfUseAreClearedForTheNextPacket) {
  {
    auto const pkt = filled(1000);
    pkt->trimTailData(900);
    pkt->reserveHeadData(50);
  }
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(1500);
  EXPECT_THAT(std::as_const(*pkt).octets(), Each(0));
}

TEST_F(PktTest, AZeroTailThatIsTrimmedTakesItsHeadersAlong) {
  auto const pkt = manager_.newPkt();
  pkt->reserveHeadData(100);
  pkt->icmp6MsgIs(54, 46);
  pkt->trimZeroTail(10);
  EXPECT_EQ(pkt->icmp6MsgLen(), 36U);
}

TEST_F(PktDeathTest, TrimmingMoreZerosThanThereAreOctetsStopsTheProcess) {
  auto const pkt = filled(10);
  EXPECT_DEATH(pkt->trimZeroTail(11), "assertion");
}

TEST_F(PktDeathTest, ReservingMoreThanAPacketHoldsStopsTheProcess) {
  auto const pkt = filled(10);
  EXPECT_DEATH(pkt->reserveHeadData(Pkt::maxSize - 9), "assertion");
  EXPECT_DEATH(pkt->reserveHeadData(std::numeric_limits<U64>::max()), "assertion");
}

TEST_F(PktDeathTest, AHeaderOutsideTheDataStopsTheProcess) {
  auto const pkt = filled(100);
  EXPECT_DEATH(pkt->ip6HdrOffsetIs(61), "assertion");
  EXPECT_DEATH(pkt->icmp6MsgIs(54, 47), "assertion");
  EXPECT_DEATH(pkt->icmp6MsgIs(std::numeric_limits<U64>::max(), 4), "assertion");
  EXPECT_DEATH(pkt->icmp6MsgIs(54, 3), "assertion");
  EXPECT_DEATH(pkt->headerAt<Icmp6Hdr>(97), "assertion");
}

}  // namespace
