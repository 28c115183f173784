#include <RouterPlatform/Packet/PktManager.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace Net;
using Fwk::Ptr;

TEST(PktManager, CountsThePacketsInUse) {
  PktManager manager;
  EXPECT_EQ(manager.pktCount(), 0U);
  {
    auto const one = manager.newPkt();
    auto const same = one;
    auto const other = manager.newPkt();
    EXPECT_EQ(manager.pktCount(), 2U);
  }
  EXPECT_EQ(manager.pktCount(), 0U);
}

TEST(PktManager, GivesNoPacketAboveItsLimit) {
  PktManager manager;
  manager.pktLimitIs(2);
  EXPECT_EQ(manager.pktLimit(), 2U);
  auto one = manager.newPkt();
  auto const other = manager.newPkt();
  EXPECT_TRUE(one);
  EXPECT_TRUE(other);
  EXPECT_FALSE(manager.newPkt());
  one = nullptr;
  EXPECT_TRUE(manager.newPkt());
}

TEST(PktManager, GivesNoPacketWithoutMemoryAndCountsNone) {
  PktManager manager;
  for (std::size_t const allowed : {0U, 1U}) {  // none for the buffer; none for the packet
    AllocationFailure const failure(allowed);
    EXPECT_FALSE(manager.newPkt());
    EXPECT_EQ(manager.pktCount(), 0U);
  }
  EXPECT_TRUE(manager.newPkt());
}

TEST(PktManager, ALowerLimitEndsNoPacket) {
  PktManager manager;
  auto const one = manager.newPkt();
  auto other = manager.newPkt();
  manager.pktLimitIs(1);
  EXPECT_EQ(manager.pktCount(), 2U);
  other = nullptr;
  EXPECT_FALSE(manager.newPkt());
}

TEST(PktManager, GivesTheBufferOfAnEndedPacketToTheNext) {
  PktManager manager;
  auto pkt = manager.newPkt();
  pkt->reserveHeadData(100);
  U8 const* const data = pkt->data();
  pkt = nullptr;
  pkt = manager.newPkt();
  EXPECT_EQ(pkt->size(), 0U);
  EXPECT_EQ(pkt->reserveHeadData(100), data);
}

TEST(PktManager, AllocatesNothingInSteadyState) {
  PktManager manager;
  { auto const first = manager.newPkt(); }
  auto const before = allocationCount();
  for (int i = 0; i < 100; ++i) {
    auto const pkt = manager.newPkt();
    pkt->reserveHeadData(1536);
    pkt->trimTailData(1000);
  }
  EXPECT_EQ(allocationCount(), before);
}

TEST(PktManager, KeepsJumboBuffersAndFreesGiantOnes) {
  PktManager manager;
  { manager.newPkt()->reserveHeadData(9216); }
  auto before = allocationCount();
  { manager.newPkt()->reserveHeadData(9216); }
  EXPECT_EQ(allocationCount(), before);

  { manager.newPkt()->reserveHeadData(PktManager::keptCapacityMax); }
  before = allocationCount();
  { manager.newPkt()->reserveHeadData(100); }
  EXPECT_GT(allocationCount(), before);
}

TEST(PktManager, KeepsNoMoreThanABoundedNumberOfPackets) {
  PktManager manager;
  U64 const count = PktManager::keptPktsMax + 10;
  std::vector<Ptr<Pkt>> pkts(count);
  for (auto& pkt : pkts) pkt = manager.newPkt();
  for (auto& pkt : pkts) pkt = nullptr;
  auto const before = allocationCount();
  for (auto& pkt : pkts) pkt = manager.newPkt();
  EXPECT_EQ(allocationCount() - before, 10 * 2U);  // packet and buffer
}

TEST(PktManager, ThereIsOneForTheProcess) {
  EXPECT_EQ(&globalPktManager(), &globalPktManager());
  EXPECT_EQ(globalPktManager().pktLimit(), PktManager::pktLimitDefault());
  EXPECT_TRUE(globalPktManager().newPkt());
}

TEST(PktManager, ThreadsMayShareItInTheThreadSafeMode) {
  PktManager manager;
  manager.pktLimitIs(6);
  Fwk::threadSafePtrModeIs(true);
  auto const shared = manager.newPkt();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&manager, shared, t] {
      for (int i = 0; i < 2000; ++i) {
        auto const copy = shared;
        auto const pkt = manager.newPkt();
        auto const second = manager.newPkt();
        if (pkt) pkt->reserveHeadData(64)[0] = static_cast<U8>(t);
      }
    });
  for (auto& thread : threads) thread.join();
  Fwk::threadSafePtrModeIs(false);
  EXPECT_EQ(manager.pktCount(), 1U);
}

TEST(PktManager, TheLastOfSeveralThreadsToLetGoGivesThePacketBack) {
  PktManager manager;
  Fwk::threadSafePtrModeIs(true);
  std::vector<Ptr<Pkt>> pkts(1000);
  for (auto& pkt : pkts) pkt = manager.newPkt();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([own = pkts]() mutable {
      for (auto& pkt : own) pkt = nullptr;
    });
  pkts.clear();
  for (auto& thread : threads) thread.join();
  Fwk::threadSafePtrModeIs(false);
  EXPECT_EQ(manager.pktCount(), 0U);
}

TEST(PktManagerDeathTest, EndingBeforeItsPacketsStopsTheProcess) {
  EXPECT_DEATH(
      {
        Ptr<Pkt> pkt;
        PktManager manager;
        pkt = manager.newPkt();
      },
      "PktManager: assertion \"pktCount_ == 0\" failed");
}

}  // namespace
