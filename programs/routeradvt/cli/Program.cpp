#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/HelpFormatter.h>
#include <programs/routeradvt/cli/Program.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <ostream>

namespace Tool {

namespace {

constexpr char const* programName = "routeradvt";

ExitStatus failed(Console& console, std::string const& text) {
  console.err << programName << ": " << printable(text) << '\n';
  return ExitStatus::failed;
}

/// `command`: whose help to point at; empty: that of the program.
ExitStatus wrongUsage(Console& console, std::string const& command, std::string const& text) {
  console.err << programName << ": " << printable(text) << "\n'" << programName << (command.empty() ? "" : " ")
              << command << " --help' tells what is possible\n";
  return ExitStatus::usage;
}

/// A full disk or a closed pipe shows here, and would otherwise pass for success.
ExitStatus succeededIfWritten(Console& console) {
  return console.out.flush() ? ExitStatus::success : failed(console, "the output could not be written");
}

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

/// About the first argument to `app` that looks like an option and is none; empty: there is no such argument.
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

/// What is wrong with the arguments. The parser's own words are kept where they say it.
std::string usageText(CLI::App const& program, CLI::App const& app, CLI::ParseError const& error) {
  // It may be why something else is missing, so it comes first.
  for (CLI::App const* const holder : {&program, &app})
    if (std::string text = unknownOption(*holder, app); !text.empty()) return text;
  std::string const text = error.what();
  auto const is = [&](CLI::ExitCodes code) { return error.get_exit_code() == static_cast<int>(code); };
  if (is(CLI::ExitCodes::ExtrasError))
    for (std::string const& argument : program.remaining(true))
      if (argument != "--") return inQuotes(argument) + " is one argument too many";
  if (is(CLI::ExitCodes::ConversionError))  // only of a flag: the values of options are converted here
    return text.substr(text.find(": ") + 2) + ": no value is meant";
  if (is(CLI::ExitCodes::ArgumentMismatch))
    return text.substr(0, text.find(':')) + ": one value is meant, and the option once";
  if (!is(CLI::ExitCodes::RequiredError) || &program != &app) return text;
  std::string commands;
  for (std::string const& name : commandNames(program)) commands += (commands.empty() ? "" : ", ") + name;
  return "a command is required, one of " + commands;
}

ExitStatus run(std::string const& name, Command& command, Console& console) {
  try {
    command.run(console);
  } catch (Failure const& e) {
    for (std::string const& message : e.messages()) console.err << printable(message) << '\n';
    return ExitStatus::failed;
  } catch (UsageError const& e) {
    return wrongUsage(console, name, e.what());
  } catch (std::exception const& e) {
    return failed(console, e.what());
  }
  return succeededIfWritten(console);
}

void configure(CLI::App& program) {
  program.formatter(std::make_shared<HelpFormatter>());
  program.set_help_flag("-h,--help", "print this help");
  program.set_version_flag("--version", std::string(programName) + ' ' + ROUTERADVT_VERSION, "print the version");
  program.require_subcommand(1);
  program.footer(
      "'routeradvt COMMAND --help' explains a command, 'man routeradvt' the configuration file too.\n"
      "Exit status: 0 success, 1 failed, 2 wrong usage.");
}

/// `help` and `help COMMAND` are other words for the flag.
void spellOutHelp(std::vector<std::string>& arguments) {
  if (arguments.empty() || arguments[0] != "help") return;
  arguments.erase(arguments.begin());
  arguments.emplace_back("--help");
}

/// The parser would only say that a command is missing.
std::string unknownCommand(CLI::App const& program, std::vector<std::string> const& arguments) {
  if (arguments.empty() || arguments[0].starts_with('-')) return {};
  std::vector<std::string> const names = commandNames(program);
  if (std::ranges::find(names, arguments[0]) != names.end()) return {};
  return "there is no command " + inQuotes(arguments[0]) + nearestNameHint(arguments[0], {names.begin(), names.end()});
}

}  // namespace

CommandLine makeCommandLine(Commands commands) {
  CommandLine line{
      std::make_shared<CLI::App>(
          "Builds, sends and inspects IPv6 Router Advertisements (RFC 4861, RFC 4191, RFC 8106).", programName),
      {}};
  configure(*line.program);
  for (auto& command : commands) {
    CLI::App& app = command->addTo(*line.program);
    app.group("Commands");
    app.set_help_flag("-h,--help", "print this help");
    line.commands.emplace_back(&app, std::move(command));
  }
  return line;
}

ExitStatus runProgram(Commands commands, std::vector<std::string> arguments, Console console) {
  CommandLine const line = makeCommandLine(std::move(commands));
  CLI::App& program = *line.program;
  spellOutHelp(arguments);
  if (std::string const text = unknownCommand(program, arguments); !text.empty()) return wrongUsage(console, {}, text);
  try {
    std::ranges::reverse(arguments);  // it takes them from the back
    program.parse(arguments);
  } catch (CLI::Success const& e) {
    program.exit(e, console.out, console.err);
    return succeededIfWritten(console);
  } catch (CLI::ParseError const& e) {
    auto const parsed = program.get_subcommands();
    CLI::App const& app = parsed.empty() ? program : *parsed.front();
    return wrongUsage(console, parsed.empty() ? std::string() : app.get_name(), usageText(program, app, e));
  }
  for (auto const& [app, command] : line.commands)
    if (app->parsed()) return run(app->get_name(), *command, console);
  return ExitStatus::usage;  // not reached: a subcommand is required
}

}  // namespace Tool
