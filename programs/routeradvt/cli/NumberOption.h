#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace Tool {

/// What a number on the command line may be.
template <class T>
struct Bounds {
  T min;
  std::optional<T> max;  ///< nothing: as much as the type holds
};

/// The number that `text` is: decimal digits, with a sign and a fraction where the type has them. Throws
/// `CLI::ValidationError` for any other text, `nan` and `inf` among them, and for a number out of bounds.
template <class T>
T parseNumber(std::string const& option, std::string const& text, Bounds<T> const& bounds);
extern template Fwk::S32 parseNumber(std::string const&, std::string const&, Bounds<Fwk::S32> const&);
extern template Fwk::U64 parseNumber(std::string const&, std::string const&, Bounds<Fwk::U64> const&);
extern template double parseNumber(std::string const&, std::string const&, Bounds<double> const&);

/// The numbers within bounds, for the help.
template <class T>
std::string rangeText(Bounds<T> const& bounds);
extern template std::string rangeText(Bounds<Fwk::S32> const&);
extern template std::string rangeText(Bounds<Fwk::U64> const&);
extern template std::string rangeText(Bounds<double> const&);

/// An option whose value is a number; a text that is none, or one out of bounds, is a usage error.
template <class T>
CLI::Option* addNumberOption(CLI::App& app, std::string const& name, std::optional<T>& value, Bounds<T> const& bounds,
                             std::string const& valueName, std::string const& description) {
  auto const take = [&value, name, bounds](std::string const& text) { value = parseNumber(name, text, bounds); };
  return app.add_option_function<std::string>(name, take, description)
      ->type_name(valueName)
      ->check(CLI::Validator(rangeText(bounds)));
}

}  // namespace Tool
