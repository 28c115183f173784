#include <programs/common/frames/FrameDescription.h>
#include <programs/common/text/Text.h>

#include <algorithm>

namespace Tool {

namespace {

constexpr std::size_t offsetWidth = 6;
constexpr std::size_t nameWidth = 22;

std::string right(std::string const& text, std::size_t width) {
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

void appendBlock(std::string& out, FrameBlock const& block) {
  out += block.title;
  out += block.size == 0 ? "\n" : " (" + std::to_string(block.size) + " octets)\n";
  for (FrameField const& field : block.fields) {
    std::string const offset = field.name.empty() ? std::string() : std::to_string(field.offset);
    out += right(offset, offsetWidth) + "  " + padded(field.name, nameWidth) + "  " + field.value + '\n';
  }
  for (std::string const& oddity : block.oddities) out += right("!", offsetWidth) + "  " + oddity + '\n';
}

}  // namespace

std::string toText(FrameDescription const& description) {
  std::string out;
  for (FrameBlock const& block : description.blocks) {
    if (!out.empty()) out += '\n';
    appendBlock(out, block);
  }
  return out;
}

}  // namespace Tool
