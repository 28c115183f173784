#pragma once

#include <programs/common/frames/FrameDescription.h>
#include <programs/common/frames/PlacedOctets.h>

#include <string>
#include <string_view>

namespace Tool {

/// Describes one block, field by field. Its offsets count from the block's first octet.
class BlockWriter {
 public:
  /// Adds the block to `description`, in which nothing else is added while this lives.
  BlockWriter(FrameDescription& description, std::string title, PlacedOctets octets);

  void field(std::size_t at, std::string name, std::string value);
  /// The octets from `at` on, at most `count`, in rows of 16. No octets, no field.
  void hexField(std::size_t at, std::string const& name, std::size_t count = std::dynamic_extent);
  void oddity(std::string text) { block_.oddities.push_back(std::move(text)); }
  /// Notes a field that has to be zero and is not.
  void mustBeZero(std::string_view name, Fwk::U64 value);

  PlacedOctets const& octets() const { return octets_; }

 private:
  FrameBlock& block_;
  PlacedOctets octets_;
};

/// A lifetime in seconds, as on the wire: `1800 s (30 min)`, `infinity`.
std::string lifetimeText(Fwk::U32 seconds);
/// `0x86dd`.
std::string hexText(Fwk::U64 value, int digits);
std::string addressText(std::span<Fwk::U8 const, 16> octets);

}  // namespace Tool
