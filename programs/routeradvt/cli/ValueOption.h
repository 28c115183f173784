#pragma once

#include <RouterPlatform/Forms/TextCodec.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/ValueTypes.h>

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace Tool {

/// An option whose value is of a type with a plain text form; a text that is none is a usage error, and so is a value
/// for which `refuse` has a reason.
template <class T>
CLI::Option* addValueOption(CLI::App& app, std::string const& name, std::optional<T>& value,
                            std::string const& valueName, std::string const& description,
                            std::string (*refuse)(T const&) = nullptr) {
  auto const take = [&value, name, refuse](std::string const& text) {
    constexpr char const* type = Fwk::TextCodec<T>::typeName;
    T parsed{};
    if (Fwk::TextCodec<T>::parse(text, parsed) != Fwk::TextStatus::ok)
      throw CLI::ValidationError(name, inQuotes(text) + " is not " + expectedText(type));
    std::string why = refusal(type, text);
    if (why.empty() && refuse) why = refuse(parsed);
    if (!why.empty()) throw CLI::ValidationError(name, why);
    value = parsed;
  };
  return app.add_option_function<std::string>(name, take, description)->type_name(valueName);
}

/// Of an option that names something, such as a file: the empty name is a usage error.
inline CLI::Option* namesA(std::string const& thing, CLI::Option* option) {
  return option->check([thing](std::string const& name) {
    return name.empty() ? "the empty name stands for no " + thing : std::string();
  });
}

}  // namespace Tool
