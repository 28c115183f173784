#include <RouterPlatform/Nd/Mtu.h>
#include <tests/RouterPlatform/Nd/OptionTest.h>

namespace Net {
namespace {

using OptionTest::expectWrites;
using OptionTest::taken;

TEST(Mtu, IsWrittenAsTheDiagramSays) {
  expectWrites([](FrameWriter& out) { return put(out, Mtu{.octets = 0xa1a2a3a4}); }, "05 01 0000 a1a2a3a4");
}

TEST(Mtu, IsReadAsTheDiagramSays) { EXPECT_EQ(taken(takeMtu, "05 01 0000 000005dc").octets, 1500U); }

TEST(Mtu, ReservedOctetsAreReadAndNotWritten) {
  auto const mtu = taken(takeMtu, "05 01 b1b2 000005dc");
  EXPECT_EQ(mtu.reserved, 0xb1b2);
  expectWrites([&](FrameWriter& out) { return put(out, mtu); }, "05 01 0000 000005dc");
}

TEST(Mtu, IsReadWhateverItsTypeAndLength) { EXPECT_EQ(taken(takeMtu, "63 00 0000 000005dc").octets, 1500U); }

}  // namespace
}  // namespace Net
