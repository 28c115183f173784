#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <string>
#include <string_view>

/// Outcomes of the operations of a shared table, and the damage that they report.
namespace SharedTable {

using Fwk::U64;
using Fwk::U8;

/// Why a table could not be mounted or attached.
enum class Errc : U8 {
  ok,
  badName,       ///< a mount path or collection name that cannot be one
  noTable,       ///< there is no such file
  notTrusted,    ///< owner, mode or kind of a file or directory is not what it has to be
  incompatible,  ///< a table of another format version, byte order or row layout
  damaged,       ///< not a table, or not a whole one
  secondWriter,  ///< another writer holds the table
  noSpace,       ///< the file system is full
  system         ///< a system call failed
};

/// Outcome of mounting or attaching a table: success, or the error.
struct [[nodiscard]] Error {
  Errc code = Errc::ok;
  int systemError = 0;  ///< errno of the call that failed, or 0
  std::string text;     ///< what happened to which file

  /// True: there is an error.
  explicit operator bool() const noexcept { return code != Errc::ok; }
};

/// A place that does not hold what it should.
struct Corruption {
  enum class Place : U8 { none, header, index, bucket, slot };

  Place place = Place::none;
  U64 number = 0;  ///< of the bucket or slot
  U64 offset = 0;  ///< in the file, octets

  explicit operator bool() const noexcept { return place != Place::none; }
};

ROUTER_PLATFORM_EXPORT void appendText(std::string& out, Errc code);
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, Corruption const& corruption);

/// Outcome of a change.
enum class WriteStatus : U8 {
  ok,
  full,     ///< the table holds its maximum of rows; those that it holds can still be changed
  noSpace,  ///< the file system is full; rows that are there can still be changed
  corrupt
};
ROUTER_PLATFORM_EXPORT void appendText(std::string& out, WriteStatus status);

}  // namespace SharedTable
