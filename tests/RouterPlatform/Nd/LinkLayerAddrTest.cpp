#include <RouterPlatform/Nd/LinkLayerAddr.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::taken;

EthAddr const address("a1:a2:a3:a4:a5:a6");

TEST(LinkLayerAddr, IsThatOfTheSourceByDefault) {
  expectWrites([](FrameWriter& out) { return put(out, LinkLayerAddr{.address = address}); }, "01 01 a1a2a3a4a5a6");
}

TEST(LinkLayerAddr, MayBeThatOfTheTarget) {
  LinkLayerAddr const target{.address = address, .type = Icmp6HdrLinkLayerAddrOption::targetTypeValue};
  expectWrites([&](FrameWriter& out) { return put(out, target); }, "02 01 a1a2a3a4a5a6");
}

TEST(LinkLayerAddr, IsReadWithItsTypeWhateverItsLength) {
  auto const option = taken(takeLinkLayerAddr, "02 07 a1a2a3a4a5a6");
  EXPECT_EQ(option.type, 2);
  EXPECT_EQ(option.address, address);
}

}  // namespace
}  // namespace Net
