#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/Options.h>
#include <programs/routeradvt/cli/Parser.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <deque>
#include <sstream>
#include <utility>

namespace Tool {

namespace {

constexpr char const* programName = "routeradvt";

/// The text with lines of at most `width` characters. Indented lines, which are examples, and empty lines stay.
std::string folded(std::string const& text, std::size_t width) {
  std::string result;
  std::size_t used = 0;  // of the current line
  for (std::string const& line : CLI::detail::split(text, '\n')) {
    if (!result.empty()) result += '\n';
    used = 0;
    if (line.starts_with(' ')) {
      result += line;
      continue;
    }
    for (std::string const& word : CLI::detail::split(line, ' ')) {
      bool const breaks = used > 0 && used + 1 + word.size() > width;
      if (used > 0) result += breaks ? '\n' : ' ';
      used = breaks ? word.size() : used + (used > 0) + word.size();
      result += word;
    }
  }
  return result;
}

std::string valueName(CLI::Option const& option) { return option.get_positional() ? "" : option.get_type_name(); }

/// Help for people: the name of a value, and not its type.
class HelpFormatter : public CLI::Formatter {
 public:
  explicit HelpFormatter(std::size_t columns) : columns_(columns) {
    column_width(nameColumns);
    label("Positionals", "Arguments");
    label("OPTIONS", "OPTION...");
    label("SUBCOMMAND", "COMMAND");
  }
  std::string make_help(CLI::App const* app, std::string name, CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(CLI::Formatter::make_help(app, std::move(name), mode), "\n\n\n", "\n\n");
  }
  std::string make_description(CLI::App const* app) const override {
    return folded(app->get_description(), columns_) + '\n';
  }
  /// Options that are required stand before the others.
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
  std::string make_option_desc(CLI::Option const* option) const override {
    return besideName(option->get_description());
  }
  std::string make_subcommand(CLI::App const* command) const override {
    std::ostringstream out;
    CLI::detail::format_help(out, command->get_name(), besideName(command->get_description()), nameColumns);
    return out.str();
  }
  std::string make_footer(CLI::App const* app) const override { return folded(app->get_footer(), columns_) + '\n'; }

 private:
  static constexpr std::size_t nameColumns = 24;
  static constexpr std::size_t leastColumns = 16;

  std::string besideName(std::string const& text) const {
    return folded(text, std::max(columns_, nameColumns + leastColumns) - nameColumns);
  }

  std::size_t columns_;
};

std::vector<std::string> commandNames(CLI::App const& program) {
  std::vector<std::string> names;
  for (CLI::App const* command : program.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

std::string optionHint(CLI::App const& app, std::string const& name) {
  std::vector<std::string> names;
  for (CLI::Option const* option : app.get_options()) {
    for (std::string const& longName : option->get_lnames()) names.push_back("--" + longName);
    for (std::string const& shortName : option->get_snames()) names.push_back('-' + shortName);
  }
  return nearestNameHint(name, {names.begin(), names.end()});
}

/// About the first argument of `app` that looks like an option and is unknown; empty: there is none.
/// `command`: the one that was asked for, or `app` itself.
std::string unknownOption(CLI::App const& app, CLI::App const& command) {
  for (std::string const& argument : app.remaining())
    if (argument.size() > 1 && argument.starts_with('-') && argument != "--") {
      std::string const name = argument.substr(0, argument.find('='));
      if (&app != &command && command.get_option_no_throw(name))
        return inQuotes(name) + " is an option of " + command.get_name() + ", and goes behind it";
      return "there is no option " + inQuotes(name) + optionHint(app, name);
    }
  return {};
}

/// Why the arguments are refused; the parser's own words where they say it.
std::string usageText(CLI::App const& program, CLI::App const& app, CLI::ParseError const& error) {
  // An unknown option may be why something else is missing, so it comes first.
  for (CLI::App const* const holder : {&program, &app})
    if (std::string text = unknownOption(*holder, app); !text.empty()) return text;
  std::string const text = error.what();
  auto const is = [&](CLI::ExitCodes code) { return error.get_exit_code() == static_cast<int>(code); };
  if (is(CLI::ExitCodes::ExtrasError))
    for (std::string const& argument : program.remaining(true))
      if (argument != "--") return "unexpected argument " + inQuotes(argument);
  if (is(CLI::ExitCodes::ConversionError))  // only of a flag: the values of options are converted here
    return text.substr(text.find(": ") + 2) + ": the option takes no value";
  if (is(CLI::ExitCodes::ArgumentMismatch))
    return text.substr(0, text.find(':')) + ": expected one value, and the option only once";
  if (!is(CLI::ExitCodes::RequiredError) || &program != &app) return text;
  std::string commands;
  for (std::string const& name : commandNames(program)) commands += (commands.empty() ? "" : ", ") + name;
  return "a command is required, one of " + commands;
}

void addOption(CLI::App& app, Option const& option) {
  CLI::Option* added = nullptr;
  if (option.flag) {
    added = app.add_flag(option.name, *option.flag, option.description);
  } else {
    auto const take = [&option](std::string const& text) {
      if (std::string const why = option.take(text); !why.empty()) throw CLI::ValidationError(option.name, why);
    };
    added = app.add_option_function<std::string>(option.name, take, option.description);
    added->type_name(option.valueName)->required(option.need == Need::required);
  }
  if (!option.heading.empty()) added->group(option.heading);
}

/// The program and its commands as the parser sees them.
class CommandLine {
 public:
  CommandLine(Commands const& commands, unsigned columns)
      : program_("Builds, sends and inspects IPv6 Router Advertisements (RFC 4861, RFC 4191, RFC 8106).", programName) {
    program_.formatter(std::make_shared<HelpFormatter>(columns));
    program_.set_help_flag("-h,--help", "print this help");
    program_.set_version_flag("--version", std::string(programName) + ' ' + ROUTERADVT_VERSION, "print the version");
    program_.require_subcommand(1);
    program_.footer(
        "'routeradvt COMMAND --help' explains a command; 'man routeradvt' also explains the configuration file.\n"
        "Exit status: 0 success, 1 failed, 2 wrong usage.");
    for (auto const& command : commands) addCommand(*command);
  }

  Request parse(std::vector<std::string> arguments) {
    if (std::string const text = unknownCommand(arguments); !text.empty()) return refused({}, text);
    try {
      std::ranges::reverse(arguments);  // the parser takes them from the back
      program_.parse(arguments);
    } catch (CLI::Success const& e) {
      std::ostringstream text;
      program_.exit(e, text, text);
      return {nullptr, {}, text.str(), ExitStatus::success};
    } catch (CLI::ParseError const& e) {
      auto const parsed = program_.get_subcommands();
      CLI::App const& app = parsed.empty() ? program_ : *parsed.front();
      return refused(parsed.empty() ? std::string() : app.get_name(), usageText(program_, app, e));
    }
    for (auto const& [app, command] : commands_)
      if (app->parsed()) return {command, app->get_name(), {}, ExitStatus::success};
    return refused({}, {});  // not reached: a command is required
  }

 private:
  static Request refused(std::string name, std::string text) {
    return {nullptr, std::move(name), std::move(text), ExitStatus::usage};
  }

  void addCommand(Command& command) {
    CommandText const text = command.text();
    CLI::App& app = *program_.add_subcommand(text.name, text.summary);
    app.group("Commands");
    app.footer(text.details);
    command.addTo(options_.emplace_back());
    for (Option const& option : options_.back().all()) addOption(app, option);
    app.set_help_flag("-h,--help", "print this help");
    commands_.emplace_back(&app, &command);
  }

  /// The parser would only say that a command is missing.
  std::string unknownCommand(std::vector<std::string> const& arguments) const {
    if (arguments.empty() || arguments[0].starts_with('-')) return {};
    std::vector<std::string> const names = commandNames(program_);
    if (std::ranges::find(names, arguments[0]) != names.end()) return {};
    return "there is no command " + inQuotes(arguments[0]) +
           nearestNameHint(arguments[0], {names.begin(), names.end()});
  }

  CLI::App program_;
  std::deque<Options> options_;  // referred to by the parser's options
  std::vector<std::pair<CLI::App*, Command*>> commands_;
};

/// `help` and `help COMMAND` are other words for the flag.
void spellOutHelp(std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments[0] != "help") return;
  arguments.erase(arguments.begin());
  arguments.emplace_back("--help");
}

}  // namespace

Request parseArguments(Commands const& commands, std::vector<std::string> arguments, unsigned columns) {
  spellOutHelp(arguments);
  return CommandLine(commands, columns).parse(std::move(arguments));
}

}  // namespace Tool
