#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <utility>

namespace Tool {

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
  std::string make_option_opts(CLI::Option const* option) const override {
    return option->get_positional() || option->get_type_size() == 0 ? std::string() : ' ' + option->get_type_name();
  }
};

}  // namespace Tool
