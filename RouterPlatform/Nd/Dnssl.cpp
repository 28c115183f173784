#include <RouterPlatform/Nd/Dnssl.h>

#include <algorithm>
#include <bit>

namespace Net {

namespace {

/// 0x80 in every octet of `word` that is a dot, 0 in the others. No octet's sum carries into the next one.
U64 flagsOfDots(U64 word) noexcept {
  constexpr U64 ones = 0x0101010101010101;
  U64 const zeroAtDots = word ^ ones * U64{'.'};
  return ~(((zeroAtDots & ones * 0x7f) + ones * 0x7f) | zeroAtDots) & ones * 0x80;
}

/// Writes `text`, which fits, as labels. It stands one octet further on than the labels begin, so that every dot is
/// where the length of the label behind it belongs; a length is filled in where its label ends.
void putLabels(FrameWriter& out, std::string_view text) noexcept {
  U64 const start = out.offset();
  out.append(std::string_view("", 1));
  out.append(text);
  std::span<U8> const labels = out.written(start);
  std::size_t label = 0;
  auto const endLabel = [&](std::size_t end) {
    labels[label] = static_cast<U8>(end - label);
    label = end + 1;
  };
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8)
    for (U64 dots = flagsOfDots(wordFirstOctetLowest(text.data() + at)); dots != 0; dots &= dots - 1)
      endLabel(at + static_cast<std::size_t>(std::countr_zero(dots)) / 8);
  for (; at < text.size(); ++at)
    if (text[at] == '.') endLabel(at);
  endLabel(text.size());
}

/// Where the first label begins that does not fit. There is one.
U64 firstThatDoesNotFit(FrameWriter const& out, std::string_view name) noexcept {
  std::size_t pos = 0, labelEnd = 0;
  while (out.fits((labelEnd = std::min(name.find('.', pos), name.size())) + 1)) pos = labelEnd + 1;
  return pos;
}

}  // namespace

std::optional<U64> putName(FrameWriter& out, std::string_view name) noexcept {
  if (!name.empty()) {
    if (!out.fits(1 + name.size())) {
      U64 const pos = firstThatDoesNotFit(out, name);
      if (pos > 0) putLabels(out, name.substr(0, pos - 1));
      return pos;
    }
    putLabels(out, name);
  }
  out.appendZeros(1);
  return std::nullopt;
}

}  // namespace Net
