#include <tools/routeradvt/Diagnostic.h>
#include <tools/routeradvt/HelpFormatter.h>
#include <tools/routeradvt/NearestName.h>
#include <tools/routeradvt/Program.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <ostream>

namespace Tool {

namespace {

constexpr char const* programName = "routeradvt";

ExitStatus run(Command& command, Console& console) {
  try {
    command.run(console);
  } catch (Failure const& e) {
    console.err << e.what() << '\n';
    return ExitStatus::failed;
  } catch (UsageError const& e) {
    console.err << programName << ": " << e.what() << '\n';
    return ExitStatus::usage;
  } catch (std::exception const& e) {
    console.err << programName << ": " << e.what() << '\n';
    return ExitStatus::failed;
  }
  // A full disk or a closed pipe shows here, and would otherwise pass for success.
  if (console.out.flush()) return ExitStatus::success;
  console.err << programName << ": the output could not be written\n";
  return ExitStatus::failed;
}

/// The parser would only say that a command is missing.
bool isUnknownCommand(CLI::App const& program, std::vector<std::string> const& arguments, std::ostream& err) {
  if (arguments.empty() || arguments[0].starts_with('-')) return false;
  std::vector<std::string> names;
  for (CLI::App const* command : program.get_subcommands({})) names.push_back(command->get_name());
  if (std::ranges::find(names, arguments[0]) != names.end()) return false;
  err << programName << ": there is no command " << printable(arguments[0])
      << nearestNameHint(arguments[0], {names.begin(), names.end()}) << '\n';
  return true;
}

}  // namespace

ExitStatus runProgram(std::vector<std::string> arguments, Console console) {
  CLI::App program("Builds, sends and inspects IPv6 Router Advertisements (RFC 4861, RFC 4191, RFC 8106).",
                   programName);
  program.formatter(std::make_shared<HelpFormatter>());
  program.set_help_flag("-h,--help", "print this help");
  program.require_subcommand(1);
  program.footer(
      "'routeradvt COMMAND --help' explains a command.\n"
      "Exit status: 0 success, 1 failed, 2 wrong usage.");
  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
  for (auto& command : makeCommands()) {
    CLI::App& app = command->addTo(program);
    app.group("Commands");
    app.set_help_flag("-h,--help", "print this help");
    commands.emplace_back(&app, std::move(command));
  }
  if (isUnknownCommand(program, arguments, console.err)) return ExitStatus::usage;
  try {
    std::ranges::reverse(arguments);  // it takes them from the back
    program.parse(arguments);
  } catch (CLI::Success const& e) {
    program.exit(e, console.out, console.err);
    return ExitStatus::success;
  } catch (CLI::ParseError const& e) {
    program.exit(e, console.out, console.err);
    return ExitStatus::usage;
  }
  for (auto const& [app, command] : commands)
    if (app->parsed()) return run(*command, console);
  return ExitStatus::usage;  // not reached: a subcommand is required
}

}  // namespace Tool
