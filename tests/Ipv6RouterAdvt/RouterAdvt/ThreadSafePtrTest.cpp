#include <tests/Ipv6RouterAdvt/RouterAdvt/ModelTest.h>

#include <barrier>
#include <thread>

namespace {

using namespace ModelTest;
using RouterAdvt::IntfConfig;
using RouterAdvt::intfConfigFactory;
using RouterAdvt::PrefixConfigEntry;

/// Counts how often it is told that the last outside reference goes. Not atomic: one thread ends an entity.
struct EndWitness final : Fwk::Notifiee {
  EndWitness() { hasNotificationActiveIs(true); }
  void handleNotification(Fwk::Notification const&) override {}
  void handleZeroReferences(Fwk::Entity&) override { ++told; }
  int told = 0;
};

class ThreadSafePtr : public testing::Test {
 protected:
  static constexpr int threadCount = 4;
  static constexpr int entityCount = 2'000;

  ThreadSafePtr() { Fwk::threadSafePtrModeIs(true); }
  ~ThreadSafePtr() override { Fwk::threadSafePtrModeIs(false); }

  /// An entity that holds others and is held by every thread alone.
  void makeEntity() {
    auto const intf = intfConfigFactory("Ethernet1");
    intf->prefixesIs(prefixOf("2001:db8::/64"));
    intf->notifieeList().add(*witnesses_.emplace_back(new EndWitness));
    for (auto& own : held_) own.push_back(intf);
  }

  std::vector<Ptr<EndWitness>> witnesses_;
  std::vector<std::vector<Ptr<IntfConfig>>> held_ = std::vector<std::vector<Ptr<IntfConfig>>>(threadCount);
};

TEST_F(ThreadSafePtr, AnEntityThatSeveralThreadsCopyAndDropEndsOnce) {
  S64 const intfs = liveCount<IntfConfig>();
  S64 const prefixes = liveCount<PrefixConfigEntry>();
  for (int i = 0; i < entityCount; ++i) makeEntity();
  EXPECT_EQ(liveCount<IntfConfig>(), intfs + entityCount);

  std::barrier start(threadCount);
  std::vector<std::thread> threads;
  for (auto& own : held_)
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (Ptr<IntfConfig>& pointer : own) {
        for (int copies = 0; copies < 20; ++copies) {
          Ptr<IntfConfig> copy = pointer;
          Ptr<Fwk::Entity const> const base = copy;
          copy = nullptr;
        }
        pointer = nullptr;
      }
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(liveCount<IntfConfig>(), intfs);
  EXPECT_EQ(liveCount<PrefixConfigEntry>(), prefixes);
  for (Ptr<EndWitness> const& witness : witnesses_) {
    ASSERT_EQ(witness->told, 1);
    ASSERT_FALSE(witness->registered());
  }
}

}  // namespace
