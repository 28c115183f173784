#include <programs/common/text/NearestName.h>

#include <algorithm>
#include <cctype>
#include <utility>

namespace Tool {

namespace {

constexpr std::size_t wholeChange = 2;

// Bounds the work on a key that somebody else wrote; valid names are shorter.
constexpr std::size_t longestName = 128;

// More names do not fit in one line.
constexpr std::size_t listedMax = 10;

bool sameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

std::size_t exchange(char a, char b) {
  if (a == b) return 0;
  return sameLetter(a, b) ? wholeChange / 2 : wholeChange;
}

/// Optimal string alignment: edit distance with swaps of neighbours.
std::size_t distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> beforeLast, last(to.size() + 1), current(to.size() + 1);
  for (std::size_t j = 0; j <= to.size(); ++j) current[j] = j * wholeChange;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    beforeLast = std::exchange(last, current);
    current[0] = i * wholeChange;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      current[j] = std::min(
          {last[j] + wholeChange, current[j - 1] + wholeChange, last[j - 1] + exchange(from[i - 1], to[j - 1])});
      if (i > 1 && j > 1 && sameLetter(from[i - 1], to[j - 2]) && sameLetter(from[i - 2], to[j - 1]))
        current[j] = std::min(current[j], beforeLast[j - 2] + wholeChange);
    }
  }
  return current[to.size()];
}

}  // namespace

std::string_view nearestName(std::string_view name, std::vector<std::string_view> const& candidates) {
  name = name.substr(0, longestName);
  auto const found = std::ranges::min_element(
      candidates, {}, [&](std::string_view candidate) { return distance(name, candidate.substr(0, longestName)); });
  return found == candidates.end() ? std::string_view() : *found;
}

std::string nearestNameHint(std::string_view name, std::vector<std::string_view> const& candidates) {
  if (candidates.empty()) return {};
  name = name.substr(0, longestName);
  std::string_view const nearest = nearestName(name, candidates);
  std::size_t const changesMax = std::max<std::size_t>(1, std::min(name.size(), nearest.size()) / 3);
  if (distance(name, nearest.substr(0, longestName)) <= wholeChange * changesMax)
    return "; did you mean " + std::string(nearest) + '?';
  if (candidates.size() > listedMax) return {};
  std::string list;
  for (std::string_view const candidate : candidates) list += (list.empty() ? "" : ", ") + std::string(candidate);
  return (candidates.size() == 1 ? "; the only valid name is " : "; valid names: ") + list;
}

}  // namespace Tool
