#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <programs/common/frames/CaptureReader.h>
#include <programs/common/frames/CaptureWriter.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/FileDescriptor.h>
#include <tests/programs/Support/TemporaryFolder.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>

namespace Tool {

namespace {

using ToolTest::TemporaryFolder;

std::string failureOf(std::string const& fileName) {
  try {
    CaptureWriter const writer(fileName);
  } catch (Failure const& failure) {
    return failure.what();
  }
  return {};
}

TEST(CaptureWriter, WritesWhatTheReaderReads) {
  TemporaryFolder const folder;
  std::array<Fwk::U8, 60> const frame{1, 2, 3};
  CaptureWriter(folder / "a.pcap").add(frame);
  CaptureReader reader(folder / "a.pcap");
  auto const packet = reader.next();
  ASSERT_TRUE(packet);
  EXPECT_THAT(packet->octets, testing::ElementsAreArray(frame));
  EXPECT_FALSE(reader.next());
}

TEST(CaptureWriter, EmptiesAFileThatIsThere) {
  TemporaryFolder const folder;
  std::string const name = folder.write("a.pcap", std::string(1000, 'x'));
  { CaptureWriter const writer(name); }
  EXPECT_EQ(std::filesystem::file_size(name), 24u);  // the header of a capture file
}

TEST(CaptureWriter, DoesNotWaitForTheReaderOfAFifo) {
  TemporaryFolder const folder;
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(failureOf(folder / "fifo"), folder / "fifo" + ": cannot be written: nothing reads from it");
}

TEST(CaptureWriter, WritesToAFifoThatIsRead) {
  TemporaryFolder const folder;
  ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
  FileDescriptor const reader(open((folder / "fifo").c_str(), O_RDONLY | O_NONBLOCK));
  CaptureWriter(folder / "fifo").add(std::array<Fwk::U8, 60>{});
  std::array<char, 200> octets;
  EXPECT_EQ(read(reader.get(), octets.data(), octets.size()), 24 + 16 + 60);
}

TEST(CaptureWriter, SaysWhyAFileCannotBeWritten) {
  TemporaryFolder const folder;
  EXPECT_EQ(failureOf(folder / "none/a.pcap"),
            folder / "none/a.pcap" + ": cannot be written: No such file or directory");
}

}  // namespace

}  // namespace Tool
