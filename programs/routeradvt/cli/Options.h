#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Forms/TextCodec.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/ValueTypes.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// Smallest and largest number that an option takes.
template <class T>
struct Bounds {
  T min;
  std::optional<T> max;  ///< nothing: the largest of the type
};

/// Reads a number in decimal digits, with a sign and a fraction where the type has them. Returns why it refuses the
/// text: it is no finite number, or out of bounds; nothing: `number` is set.
template <class T>
std::string readNumber(std::string const& text, Bounds<T> const& bounds, T& number);

/// The numbers within bounds, for the help.
template <class T>
std::string rangeText(Bounds<T> const& bounds);

/// Stores the value of an option. Returns why it refuses the text, which is a usage error; nothing: the value is
/// stored.
using TakeValue = std::function<std::string(std::string const& text)>;

enum class Need { optional, required };

/// An option, or an argument, which is known by its place.
struct Option {
  std::string name;       ///< such as `--mtu`; of an argument, such as `FILE`
  std::string valueName;  ///< in the help; empty for a flag and an argument
  std::string description;
  TakeValue take;        ///< empty for a flag
  bool* flag = nullptr;  ///< set by a flag
  Need need = Need::optional;
  std::string heading;  ///< under which the help lists it; empty: among the first
};

/// The options and arguments of a command, in the order of its help.
class Options {
 public:
  /// Puts the options that follow under a heading of their own in the help.
  void heading(std::string text) { heading_ = std::move(text); }

  void flag(std::string const& name, bool& value, std::string const& description);
  void add(std::string const& name, std::string const& valueName, TakeValue take, std::string const& description);
  /// The text names a `thing`, such as a file; an empty name is refused.
  void argument(std::string const& name, std::string& value, std::string const& thing, std::string const& description,
                Need need = Need::required);
  void name(std::string const& name, std::string const& valueName, std::string& value, std::string const& thing,
            std::string const& description, Need need = Need::optional);
  /// The help names the bounds.
  template <class T>
  void number(std::string const& name, std::string const& valueName, std::optional<T>& value, Bounds<T> const& bounds,
              std::string const& description);
  /// A type with a plain text form; `refuse` returns why it does not take a value of that type.
  template <class T>
  void value(std::string const& name, std::string const& valueName, std::optional<T>& value,
             std::string const& description, std::string (*refuse)(T const&) = nullptr);

  std::vector<Option> const& all() const { return all_; }

 private:
  std::vector<Option> all_;
  std::string heading_;
};

extern template std::string readNumber(std::string const&, Bounds<Fwk::S32> const&, Fwk::S32&);
extern template std::string readNumber(std::string const&, Bounds<Fwk::U64> const&, Fwk::U64&);
extern template std::string readNumber(std::string const&, Bounds<double> const&, double&);
extern template std::string rangeText(Bounds<Fwk::S32> const&);
extern template std::string rangeText(Bounds<Fwk::U64> const&);
extern template std::string rangeText(Bounds<double> const&);

template <class T>
void Options::number(std::string const& name, std::string const& valueName, std::optional<T>& value,
                     Bounds<T> const& bounds, std::string const& description) {
  auto const take = [&value, bounds](std::string const& text) {
    T number{};
    std::string const why = readNumber(text, bounds, number);
    if (why.empty()) value = number;
    return why;
  };
  add(name, valueName, take, description + " (" + rangeText(bounds) + ')');
}

template <class T>
void Options::value(std::string const& name, std::string const& valueName, std::optional<T>& value,
                    std::string const& description, std::string (*refuse)(T const&)) {
  auto const take = [&value, refuse](std::string const& text) {
    constexpr char const* type = Fwk::TextCodec<T>::typeName;
    T parsed{};
    if (Fwk::TextCodec<T>::parse(text, parsed) != Fwk::TextStatus::ok)
      return inQuotes(text) + " is not " + expectedText(type);
    std::string why = refusal(type, text);
    if (why.empty() && refuse) why = refuse(parsed);
    if (why.empty()) value = parsed;
    return why;
  };
  add(name, valueName, take, description);
}

}  // namespace Tool
