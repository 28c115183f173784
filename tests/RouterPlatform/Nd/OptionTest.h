#pragma once

#include <RouterPlatform/Nd/FrameWriter.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the tests of the options share: vectors in hexadecimal digits, buffers that end where an option may end.
namespace OptionTest {

using Net::FrameWriter;
using Net::U64;
using Net::U8;
using Octets = std::vector<U8>;

inline constexpr U8 dirt = 0xee;

/// Blanks are passed over.
inline Octets octetsOf(std::string_view hex) {
  auto const digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  Octets octets;
  for (std::size_t i = 0; i + 1 < hex.size(); ++i)
    if (hex[i] != ' ') {
      octets.push_back(static_cast<U8>(digit(hex[i]) << 4 | digit(hex[i + 1])));
      ++i;
    }
  return octets;
}

/// `put` writes exactly these octets over whatever the buffer held, and nothing around them; in every smaller room it
/// writes nothing at all.
template <class Put>
void expectWrites(Put const& put, std::string_view hex) {
  constexpr U64 before = 3;  // no field is aligned by chance
  Octets const expected = octetsOf(hex);
  for (U64 room = 0; room <= expected.size() + 1; ++room) {
    Octets buffer(before + room, dirt);
    FrameWriter out(buffer, before, buffer.size());
    Octets whole(buffer.size(), dirt);
    bool const fits = room >= expected.size();
    EXPECT_EQ(put(out), fits) << "in " << room << " octets";
    if (fits) std::copy(expected.begin(), expected.end(), whole.begin() + before);
    EXPECT_EQ(buffer, whole) << "in " << room << " octets";
    EXPECT_EQ(out.offset(), before + (fits ? expected.size() : 0)) << "in " << room << " octets";
  }
}

/// `take` gives nothing of octets that end before the option does, wherever they are cut. Returns what it gives of all.
template <class Take>
auto taken(Take const& take, std::string_view hex) {
  Octets const before(5, dirt);
  Octets whole = before;
  for (U8 const octet : octetsOf(hex)) whole.push_back(octet);
  for (U64 size = 0; size < whole.size(); ++size) {
    Octets const cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));  // its own allocation
    EXPECT_FALSE(take(cut, before.size())) << "of " << size << " octets";
  }
  auto const result = take(whole, before.size());
  EXPECT_TRUE(result);
  return result.value();
}

}  // namespace OptionTest
