#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// The candidate that `name` takes the fewest changes to become: letters put in, left out, exchanged or swapped with
/// their neighbour; a letter in the other case counts half. The first of equals; empty when there are no candidates.
std::string_view nearestName(std::string_view name, std::vector<std::string_view> const& candidates);

/// Of more names, the nearest one is not looked for where a file can ask for it as often as it has lines.
constexpr std::size_t candidatesPerLineMax = 100;

/// The same as a clause that ends a message: `; did you mean raLifetime?`, for a far one `; the nearest valid name is
/// raLifetime`, and nothing when there are no candidates.
std::string nearestNameHint(std::string_view name, std::vector<std::string_view> const& candidates);

}  // namespace Tool
