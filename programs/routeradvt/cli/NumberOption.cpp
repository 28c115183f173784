#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/NumberOption.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace Tool {

namespace {

template <class T>
std::string textOf(T number) {
  std::array<char, 400> text;  // a double has up to 309 digits before its point
  std::to_chars_result result{};
  if constexpr (std::is_floating_point_v<T>)
    result = std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed);
  else
    result = std::to_chars(text.begin(), text.end(), number);
  return {text.data(), result.ptr};
}

template <class T>
std::string expected(Bounds<T> const& bounds) {
  return (std::is_integral_v<T> ? "a whole number from " : "a number from ") + textOf(bounds.min) +
         (bounds.max ? " to " + textOf(*bounds.max) : " on");
}

}  // namespace

template <class T>
T parseNumber(std::string const& option, std::string const& text, Bounds<T> const& bounds) {
  T number{};
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  bool isNumber = error != std::errc::invalid_argument && stop == end;
  if constexpr (std::is_floating_point_v<T>) isNumber = isNumber && std::isfinite(number);
  if (!isNumber) throw CLI::ValidationError(option, inQuotes(text) + " is not " + expected(bounds));
  // What the type does not hold is out of every bounds.
  if (error != std::errc() || number < bounds.min || (bounds.max && number > *bounds.max))
    throw CLI::ValidationError(option, inQuotes(text) + " is out of range; " + expected(bounds) + " is meant");
  return number;
}

template <class T>
std::string rangeText(Bounds<T> const& bounds) {
  bool const isBounded = bounds.max && *bounds.max < std::numeric_limits<T>::max();
  return textOf(bounds.min) + (isBounded ? " to " + textOf(*bounds.max) : " or more");
}

template Fwk::S32 parseNumber(std::string const&, std::string const&, Bounds<Fwk::S32> const&);
template Fwk::U64 parseNumber(std::string const&, std::string const&, Bounds<Fwk::U64> const&);
template double parseNumber(std::string const&, std::string const&, Bounds<double> const&);
template std::string rangeText(Bounds<Fwk::S32> const&);
template std::string rangeText(Bounds<Fwk::U64> const&);
template std::string rangeText(Bounds<double> const&);

}  // namespace Tool
