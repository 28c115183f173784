#include <programs/routeradvt/cli/Options.h>

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

TakeValue takeName(std::string& value, std::string const& thing) {
  return [&value, thing](std::string const& text) {
    value = text;
    return text.empty() ? "the empty name stands for no " + thing : std::string();
  };
}

}  // namespace

template <class T>
std::string readNumber(std::string const& text, Bounds<T> const& bounds, T& number) {
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, number);
  bool isNumber = error != std::errc::invalid_argument && stop == end;
  if constexpr (std::is_floating_point_v<T>) isNumber = isNumber && std::isfinite(number);
  if (!isNumber) return inQuotes(text) + " is not " + expected(bounds);
  // A number that the type does not hold is out of any bounds.
  if (error != std::errc() || number < bounds.min || (bounds.max && number > *bounds.max))
    return inQuotes(text) + " is out of range; expected " + expected(bounds);
  return {};
}

template <class T>
std::string rangeText(Bounds<T> const& bounds) {
  bool const isBounded = bounds.max && *bounds.max < std::numeric_limits<T>::max();
  return textOf(bounds.min) + (isBounded ? " to " + textOf(*bounds.max) : " or more");
}

void Options::flag(std::string const& name, bool& value, std::string const& description) {
  all_.push_back({name, {}, description, {}, &value, Need::optional, heading_});
}

void Options::add(std::string const& name, std::string const& valueName, TakeValue take,
                  std::string const& description) {
  all_.push_back({name, valueName, description, std::move(take), nullptr, Need::optional, heading_});
}

void Options::argument(std::string const& name, std::string& value, std::string const& thing,
                       std::string const& description, Need need) {
  all_.push_back({name, {}, description, takeName(value, thing), nullptr, need, {}});
}

void Options::name(std::string const& name, std::string const& valueName, std::string& value, std::string const& thing,
                   std::string const& description, Need need) {
  all_.push_back({name, valueName, description, takeName(value, thing), nullptr, need, heading_});
}

template std::string readNumber(std::string const&, Bounds<Fwk::S32> const&, Fwk::S32&);
template std::string readNumber(std::string const&, Bounds<Fwk::U64> const&, Fwk::U64&);
template std::string readNumber(std::string const&, Bounds<double> const&, double&);
template std::string rangeText(Bounds<Fwk::S32> const&);
template std::string rangeText(Bounds<Fwk::U64> const&);
template std::string rangeText(Bounds<double> const&);

}  // namespace Tool
