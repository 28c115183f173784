#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <utility>

namespace Tool {

/// What the value of an option is called; empty: it takes none, or is named by its place.
inline std::string valueName(CLI::Option const& option) {
  if (option.get_positional() || option.get_type_size() == 0) return {};
  return option.get_type_name().substr(0, option.get_type_name().find(':'));
}

/// What an option does, what holds without it, and what its value may be.
inline std::string optionText(CLI::Option const& option) {
  std::string text = option.get_description();
  if (!option.get_default_str().empty()) text += "; else " + option.get_default_str();
  std::string const type = option.get_type_name();
  if (auto const colon = type.find(':'); colon != std::string::npos) text += " (" + type.substr(colon + 1) + ')';
  return text;
}

/// Help as people read it: what goes with an option, and not how the parser sees it.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    column_width(24);
    label("Positionals", "Arguments");
    label("OPTIONS", "OPTION...");
    label("SUBCOMMAND", "COMMAND");
  }
  std::string make_help(CLI::App const* app, std::string name, CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(CLI::Formatter::make_help(app, std::move(name), mode), "\n\n\n", "\n\n");
  }
  /// Options without which the command does nothing stand before those that may be left out.
  std::string make_usage(CLI::App const* app, std::string name) const override {
    std::string required;
    for (CLI::Option const* option : app->get_options())
      if (option->get_required() && !option->get_positional())
        required += option->get_name() + ' ' + valueName(*option) + ' ';
    return CLI::detail::find_and_replace(CLI::Formatter::make_usage(app, std::move(name)), "[OPTION...]",
                                         required + "[OPTION...]");
  }
  std::string make_option_opts(CLI::Option const* option) const override {
    std::string const name = valueName(*option);
    return name.empty() ? name : ' ' + name;
  }
  std::string make_option_desc(CLI::Option const* option) const override { return optionText(*option); }
};

}  // namespace Tool
