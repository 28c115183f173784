#pragma once

#include <RouterPlatform/Fwk/TextCodec.h>
#include <tools/routeradvt/Diagnostic.h>
#include <tools/routeradvt/ValueTypes.h>

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace Tool {

/// An option whose value is of a type with a plain text form; a text that is none is a usage error.
template <class T>
CLI::Option* addValueOption(CLI::App& app, std::string const& name, std::optional<T>& value,
                            std::string const& valueName, std::string const& description) {
  auto const take = [&value, name](std::string const& text) {
    T parsed{};
    if (Fwk::TextCodec<T>::parse(text, parsed) != Fwk::TextStatus::ok)
      throw CLI::ValidationError(name, inQuotes(text) + " is not " + expectedText(Fwk::TextCodec<T>::typeName));
    value = parsed;
  };
  return app.add_option_function<std::string>(name, take, description)->type_name(valueName);
}

}  // namespace Tool
