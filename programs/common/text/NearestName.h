#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// The candidate nearest to `name`: the one with the fewest letters to insert, delete, replace or swap with their
/// neighbour, where a change of case counts half. The first of equals; empty when there are no candidates.
std::string_view nearestName(std::string_view name, std::vector<std::string_view> const& candidates);

/// More names than this are not searched where each line of a file may ask for a near one.
constexpr std::size_t candidatesPerLineMax = 100;

/// The end of a message about an unknown name: `; did you mean raLifetime?` when at most a third of the shorter name
/// (but always one letter) has to change; else the list of the candidates when it is short; else nothing.
std::string nearestNameHint(std::string_view name, std::vector<std::string_view> const& candidates);

}  // namespace Tool
