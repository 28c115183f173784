#include <tests/Ipv6RouterAdvt/Support/Advert.h>
#include <tests/RouterPlatform/Support/AllocationCount.h>

// In steady state building a frame allocates nothing.

namespace {

using namespace AdvertTest;

std::size_t allocationsOfOneBuild(Advert const& advert) {
  advert.pkt();  // the first packet is made; it comes back
  std::size_t const before = allocationCount();
  advert.pkt();
  return allocationCount() - before;
}

TEST(BuilderAllocation, TheCounterCounts) {
  std::size_t const before = allocationCount();
  Octets const octets(100);
  EXPECT_EQ(allocationCount(), before + 1);
}

TEST(BuilderAllocation, NoneForATypicalAdvertisement) { EXPECT_EQ(allocationsOfOneBuild(typicalAdvert()), 0U); }

TEST(BuilderAllocation, NoneForEveryOption) {
  Advert advert = typicalAdvert();
  advert.suffix("a.much.longer.name.that.has.no.room.in.a.string.of.its.own.example.com", 60);
  advert.server("2001:db8::54", 60);
  advert.config->networkBootFileUrlIs("tftp://[2001:db8::7]/a/path/that/is/long/enough/to/allocate/when/copied");
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneForAsManyServerLifetimesAsFit) {
  Advert advert;
  advert.mtu = 9000;
  for (U32 i = 1; i <= 100; ++i) advert.server("2001:db8::" + std::to_string(i), i);
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneForAsManySuffixLifetimesAsFit) {
  Advert advert;
  advert.mtu = 9000;
  advert.config->raMtuSuppressIs(true);
  for (U32 i = 1; i <= 100; ++i) advert.suffix(std::to_string(i), i);
  EXPECT_EQ(advert.options(31).size(), 91U);
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneForAVirtualRouter) {
  Advert advert = typicalAdvert();
  for (int i = 0; i < 50; ++i) advert.virtualPrefix("2001:db8:" + std::to_string(i) + "::/64");
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneForAnInterfacesAddresses) {
  Advert advert;
  advert.address("fe80::1/64");
  for (int i = 0; i < 50; ++i) advert.address("2001:db8:" + std::to_string(i) + "::1/64");
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneForADeathPacket) {
  Advert advert = typicalAdvert();
  advert.deathPacket = true;
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

TEST(BuilderAllocation, NoneWhenNothingFits) {
  Advert advert = typicalAdvert();
  advert.mtu = 86;
  EXPECT_EQ(allocationsOfOneBuild(advert), 0U);
}

}  // namespace
