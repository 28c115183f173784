#include <RouterPlatform/Fwk/ChangeStream.h>
#include <tests/RouterPlatform/Fwk/TestModel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Fwk::Octets;
using Fwk::Ptr;
using Fwk::ChangeStream::Reader;
using Fwk::ChangeStream::Writer;
using TestModel::Box;
using TestModel::Point;

struct ChangeStream : testing::Test {
  void sync() {
    Octets octets;
    writer.drain(octets);
    ASSERT_TRUE(reader.feed(octets)) << reader.error().text << " at " << reader.error().offset;
    EXPECT_TRUE(reader.synchronized());
  }

  Ptr<Box> box = Fwk::create<Box>("box");
  Ptr<Box> mirror = Fwk::create<Box>("mirror");
  Writer writer{box};
  Reader reader{mirror};
};

TEST_F(ChangeStream, AMirrorGetsWhatIsThere) {
  box->numberIs(7);
  box->pointIs(Point(1, 2));
  box->portsIs("a")->speedIs(9);
  box->labelsIs("k", "v");
  box->diskIs("d");
  sync();
  EXPECT_EQ(mirror->number(), 7);
  EXPECT_EQ(mirror->point(), Point(1, 2));
  ASSERT_TRUE(mirror->ports("a"));
  EXPECT_EQ(mirror->ports("a")->speed(), 9);
  EXPECT_EQ(mirror->labels("k"), "v");
  EXPECT_EQ(mirror->disk()->name(), "d");
}

TEST_F(ChangeStream, AMirrorGetsWhatChanges) {
  box->portsIs("a")->speedIs(9);
  sync();
  EXPECT_FALSE(writer.pending());
  box->numberIs(8);
  box->ports("a")->speedIs(10);
  EXPECT_TRUE(writer.pending());
  sync();
  EXPECT_EQ(mirror->number(), 8);
  EXPECT_EQ(mirror->ports("a")->speed(), 10);
}

}  // namespace
