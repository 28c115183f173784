#include <programs/common/text/Text.h>
#include <programs/routeradvt/cli/Parser.h>
#include <programs/routeradvt/cli/Program.h>

#include <ostream>

namespace Tool {

namespace {

constexpr char const* programName = "routeradvt";

ExitStatus failed(Console& console, std::string const& text) {
  console.err << programName << ": " << printable(text) << '\n';
  return ExitStatus::failed;
}

/// `command`: the one whose help to point at; empty: the program's.
ExitStatus wrongUsage(Console& console, std::string const& command, std::string const& text) {
  console.err << programName << ": " << printable(text) << "\nsee '" << programName << (command.empty() ? "" : " ")
              << command << " --help'\n";
  return ExitStatus::usage;
}

/// A full disk or a closed pipe shows here, and would otherwise pass for success.
ExitStatus succeededIfWritten(Console& console) {
  return console.out.flush() ? ExitStatus::success : failed(console, "the output could not be written");
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

}  // namespace

ExitStatus runProgram(Commands const& commands, std::vector<std::string> arguments, Console console) {
  Request const request = parseArguments(commands, std::move(arguments), console.columns);
  if (request.command) return run(request.name, *request.command, console);
  if (request.status != ExitStatus::success) return wrongUsage(console, request.name, request.text);
  console.out << request.text;
  return succeededIfWritten(console);
}

}  // namespace Tool
