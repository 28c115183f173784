#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Tool {

/// A field of a frame, in words.
struct FrameField {
  std::size_t offset;  ///< of its first octet, in the whole
  std::string name;    ///< empty: goes on with the field before
  std::string value;
};

/// A header or an option.
struct FrameBlock {
  std::string title;
  std::size_t offset;  ///< in the whole
  std::size_t size;    ///< octets that are there
  std::vector<FrameField> fields;
  /// Departures from the RFCs, one sentence per departure.
  std::vector<std::string> oddities;
};

/// The meaning of octets, block by block in their order.
struct FrameDescription {
  std::vector<FrameBlock> blocks;
};

/// For people: one line per field, with its offset; an empty line between blocks; oddities behind `!`.
std::string toText(FrameDescription const& description);

}  // namespace Tool
