#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Packet/HeaderAt.h>

#include <algorithm>
#include <optional>
#include <span>

namespace Tool {

/// Octets of unknown origin, and where in the whole they begin. Nothing outside them is ever read.
class PlacedOctets {
 public:
  explicit PlacedOctets(std::span<Fwk::U8 const> octets, std::size_t offset = 0) : octets_(octets), offset_(offset) {}

  std::size_t size() const { return octets_.size(); }
  bool empty() const { return octets_.empty(); }
  /// Offset of the first one in the whole.
  std::size_t offset() const { return offset_; }
  std::span<Fwk::U8 const> span() const { return octets_; }
  Fwk::U8 operator[](std::size_t at) const { return octets_[at]; }

  /// A copy of the header that begins there, or nothing where it does not fit.
  template <class Header>
  std::optional<Header> header(std::size_t at = 0) const {
    Header const* const found = Net::headerAt<Header>(octets_, at);
    return found ? std::optional<Header>(*found) : std::nullopt;
  }

  /// Those from `at` on, at most `count`; fewer, or none, where they end before.
  PlacedOctets from(std::size_t at, std::size_t count = std::dynamic_extent) const {
    at = std::min(at, size());
    return PlacedOctets(octets_.subspan(at, std::min(count, size() - at)), offset_ + at);
  }

 private:
  std::span<Fwk::U8 const> octets_;
  std::size_t offset_;
};

}  // namespace Tool
