#include <RouterPlatform/Nd/Units.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <programs/common/frames/BlockWriter.h>
#include <programs/common/text/Text.h>

#include <array>
#include <utility>

namespace Tool {

BlockWriter::BlockWriter(FrameDescription& description, std::string title, PlacedOctets octets)
    : block_(description.blocks.emplace_back()), octets_(octets) {
  block_.title = std::move(title);
  block_.offset = octets.offset();
  block_.size = octets.size();
}

void BlockWriter::field(std::size_t at, std::string name, std::string value) {
  block_.fields.push_back({octets_.offset() + at, std::move(name), std::move(value)});
}

void BlockWriter::hexField(std::size_t at, std::string const& name, std::size_t count) {
  constexpr std::size_t rowSize = 16;
  PlacedOctets const shown = octets_.from(at, count);
  for (std::size_t row = 0; row < shown.size(); row += rowSize)
    field(at + row, row == 0 ? name : std::string(), toHex(shown.from(row, rowSize).span()));
}

void BlockWriter::mustBeZero(std::string_view name, Fwk::U64 value) {
  if (value != 0) oddity(std::string(name) + " is " + hexText(value, 2) + "; senders leave it 0");
}

std::string lifetimeText(Fwk::U32 seconds) {
  if (seconds == Net::infiniteLifetime.count()) return "infinity";
  std::string plain = std::to_string(seconds) + " s";
  if (seconds < 60) return plain;
  static constexpr std::array<std::pair<Fwk::U32, char const*>, 4> units{
      {{86400, " d"}, {3600, " h"}, {60, " min"}, {1, " s"}}};
  std::string words;
  for (auto const& [unit, name] : units) {
    if (seconds / unit > 0) words += (words.empty() ? "" : " ") + std::to_string(seconds / unit) + name;
    seconds %= unit;
  }
  return plain + " (" + words + ')';
}

std::string hexText(Fwk::U64 value, int digits) {
  std::string text;
  for (; value != 0 || digits > 0; value >>= 4, --digits) text.insert(text.begin(), "0123456789abcdef"[value & 15]);
  return "0x" + text;
}

std::string addressText(std::span<Fwk::U8 const, 16> octets) { return Net::Ip6Addr::fromBytes(octets).toString(); }

}  // namespace Tool
