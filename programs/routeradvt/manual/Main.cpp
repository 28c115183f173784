#include <programs/routeradvt/cli/Program.h>
#include <programs/routeradvt/commands/Commands.h>
#include <programs/routeradvt/manual/ManualPage.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>

namespace {

namespace fs = std::filesystem;

/// The file has `.1.in` behind the name of the page; a page need not have any.
std::string proseOf(fs::path const& file) {
  std::ostringstream text;
  if (std::ifstream in(file); in) text << in.rdbuf();
  return text.str();
}

void write(fs::path const& file, std::string const& text) {
  if (!(std::ofstream(file) << text).flush()) throw Tool::Failure(file.string() + ": cannot be written");
}

std::set<fs::path> filesOf(fs::path const& folder) {
  return {fs::directory_iterator(folder), fs::directory_iterator()};
}

/// Pages of commands that are no more would stay otherwise.
void removePages(fs::path const& folder) {
  for (fs::path const& file : filesOf(folder))
    if (file.extension() == ".1") fs::remove(file);
}

void writePages(fs::path const& proseFolder, fs::path const& folder) {
  Tool::CommandLine const line = Tool::makeCommandLine(Tool::makeCommands());
  std::vector<CLI::App const*> apps{line.program.get()};
  for (auto const& [app, command] : line.commands) apps.push_back(app);
  fs::create_directories(folder);
  removePages(folder);
  std::set<fs::path> unused = filesOf(proseFolder);
  for (CLI::App const* app : apps) {
    std::string const page = Tool::manualPageName(*app) + ".1";
    fs::path const prose = proseFolder / (page + ".in");
    unused.erase(prose);
    try {
      write(folder / page, Tool::manualPage(*app, proseOf(prose)));
    } catch (Tool::Failure const& e) {
      throw Tool::Failure(prose.string() + ": " + e.what());
    }
  }
  if (!unused.empty()) throw Tool::Failure(unused.begin()->string() + ": there is no such page");
}

}  // namespace

/// Writes the manual pages: routeradvt_manual PROSE-FOLDER PAGE-FOLDER
int main(int argc, char** argv) try {
  if (argc != 3) throw Tool::Failure("usage: routeradvt_manual PROSE-FOLDER PAGE-FOLDER");
  writePages(argv[1], argv[2]);
} catch (std::exception const& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
