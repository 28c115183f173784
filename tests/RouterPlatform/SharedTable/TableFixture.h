#pragma once

#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Net/IntfId.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/SharedTable/Memory.h>
#include <RouterPlatform/SharedTable/Reader.h>
#include <RouterPlatform/SharedTable/Writer.h>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <compare>
#include <filesystem>
#include <string>

namespace SharedTableTest {

using Fwk::U32;
using Fwk::U64;
using Fwk::U8;

struct Key {
  Net::IntfId intfId;
  Net::Ip6Addr addr;

  static Key of(U64 number) {
    Key key;
    key.intfId = Net::IntfId("Ethernet" + std::to_string(number % 7));
    std::array<U8, 16> octets{0xfe, 0x80};
    for (std::size_t i = 0; i < 8; ++i) octets[15 - i] = static_cast<U8>(number >> (8 * i));
    key.addr = Net::Ip6Addr::fromBytes(octets);
    return key;
  }
  U64 number() const {
    U64 result = 0;
    for (std::size_t i = 8; i < 16; ++i) result = result << 8 | addr.octets()[i];
    return result;
  }
  U64 hash(U64 seed) const noexcept {
    return Fwk::HashAccumulator(seed).mix(Fwk::hashOf(intfId, seed)).mix(Fwk::hashOf(addr, seed)).result();
  }
  auto operator<=>(Key const&) const = default;
  void appendTo(std::string& out) const { Trace::appendTexts(out, intfId, '-', addr); }
};

/// A row that shows by itself whether it is whole: its words follow from key number and version.
class Row {
 public:
  Row() = default;
  Row(U64 number, U64 version) : key_(Key::of(number)), version_(version), proof_(proofOf(number, version)) {}

  Key const& key() const { return key_; }
  U64 number() const { return key_.number(); }
  U64 version() const { return version_; }
  void versionIs(U64 version) { *this = Row(number(), version); }
  bool whole() const { return *this == Row(number(), version_); }
  bool operator==(Row const&) const = default;

  static constexpr std::array tableFields{
      SharedTable::field<Net::IntfId>("key.intfId"), SharedTable::field<Net::Ip6Addr>("key.addr"),
      SharedTable::field<U64>("version"), SharedTable::field<std::array<U64, 2>>("proof")};

  friend void PrintTo(Row const& row, std::ostream* out) { *out << row.number() << '/' << row.version(); }

 private:
  static std::array<U64, 2> proofOf(U64 number, U64 version) {
    return {Fwk::hashOf(number, version), Fwk::hashOf(version, number)};
  }

  Key key_;
  U64 version_ = 0;
  std::array<U64, 2> proof_{};
};
static_assert(sizeof(Row) == 72);

using Writer = SharedTable::Writer<Row>;
using Reader = SharedTable::Reader<Row>;
using SharedTable::Capacity;
using SharedTable::Errc;
using SharedTable::LookupStatus;
using SharedTable::MountStatus;
using SharedTable::WriteStatus;

inline constexpr char const* mountPath = "test/tables";
inline constexpr char const* collection = "row";

/// A table directory of the test's own, which goes with it.
class Tables : public testing::Test {
 protected:
  Tables() {
    bool const sharedMemory = access("/dev/shm", W_OK) == 0;
    std::string name = (sharedMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path()) /
                       "table-test-XXXXXX";
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    directory_ = name;
  }
  ~Tables() override {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }

  SharedTable::WriterOptions writerOptions(U32 initialRows = 8, U32 maxRows = 1024) const {
    return {{initialRows, maxRows}, 0644, directory_};
  }
  SharedTable::ReaderOptions readerOptions() const { return {{}, directory_}; }

  std::string path(std::string const& name = std::string(collection) + ".tbl") const {
    return directory_ + "/" + mountPath + "/" + name;
  }

  std::string directory_;
};

/// Changes octets of a file behind everybody's back.
inline U8 octetAt(std::string const& path, U64 offset) {
  SharedTable::Fd const file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  U8 octet = 0;
  EXPECT_EQ(pread(file.get(), &octet, 1, static_cast<off_t>(offset)), 1);
  return octet;
}
inline void octetAtIs(std::string const& path, U64 offset, U8 octet) {
  SharedTable::Fd const file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  EXPECT_EQ(pwrite(file.get(), &octet, 1, static_cast<off_t>(offset)), 1);
}

}  // namespace SharedTableTest
