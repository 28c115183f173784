#include <programs/routeradvt/cli/Command.h>
#include <programs/routeradvt/cli/HelpFormatter.h>
#include <programs/routeradvt/manual/ManualPage.h>
#include <programs/routeradvt/manual/Roff.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>

namespace Tool {

namespace {

/// The order of man-pages(7). Sections of other names stand where the empty one does, as the prose has them.
constexpr std::array<std::string_view, 12> sectionOrder{"NAME",     "SYNOPSIS", "DESCRIPTION", "OPTIONS",
                                                        "COMMANDS", "",         "EXIT STATUS", "ENVIRONMENT",
                                                        "FILES",    "NOTES",    "EXAMPLES",    "SEE ALSO"};
constexpr std::array<std::string_view, 4> sectionsOfHelp{"NAME", "SYNOPSIS", "OPTIONS", "COMMANDS"};

std::size_t placeOf(std::string_view section) {
  auto known = std::ranges::find(sectionOrder, section);
  if (known == sectionOrder.end()) known = std::ranges::find(sectionOrder, "");
  return static_cast<std::size_t>(known - sectionOrder.begin());
}

std::string upperCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

/// A description as a sentence, or as the phrase behind a name.
std::string withFirst(int (*change)(int), std::string text) {
  // RFC and the like stay as they are.
  if (text.size() > 1 && !std::isupper(static_cast<unsigned char>(text[1])))
    text[0] = static_cast<char>(change(static_cast<unsigned char>(text[0])));
  if (text.ends_with('.')) text.pop_back();
  return text;
}

struct Paragraph {
  std::string section;
  std::string text;
};

class Page {
 public:
  /// Puts a paragraph behind what the section has.
  void add(std::string const& section, std::string const& text) {
    auto const found = std::ranges::find(sections_, section, &Paragraph::section);
    if (found == sections_.end())
      sections_.push_back({section, text});
    else  // one list of pages, not two
      found->text += (section == "SEE ALSO" ? ",\n" : "\n.PP\n") + text;
  }

  bool has(std::string const& section) const {
    return std::ranges::find(sections_, section, &Paragraph::section) != sections_.end();
  }

  std::string text() {
    std::ranges::stable_sort(sections_, {}, [](Paragraph const& paragraph) { return placeOf(paragraph.section); });
    std::string result;
    for (auto const& [section, text] : sections_)
      result.append(".SH ").append(section).append("\n").append(text).append("\n");
    return result;
  }

 private:
  std::vector<Paragraph> sections_;  ///< each whole
};

bool hasCommands(CLI::App const& app) { return !app.get_subcommands({}).empty(); }

std::string commandName(CLI::App const& app, char separator) {
  return (app.get_parent() ? app.get_parent()->get_name() + separator : "") + app.get_name();
}

std::string pageReference(std::string const& name) { return ".BR " + roffLine(name) + " (1)"; }

/// `--socket PATH`
std::string withValue(std::string const& name, CLI::Option const& option) {
  std::string const value = valueName(option);
  return roffBold(name) + (value.empty() ? "" : "\\ " + roffItalic(value));
}

/// Those of no group are hidden.
bool isShown(CLI::Option const& option) { return !option.get_group().empty(); }

std::string optionUsage(CLI::Option const& option) {
  std::string const text =
      option.get_positional() ? roffItalic(option.get_name(true)) : withValue(option.get_name(), option);
  return option.get_required() ? text : '[' + text + ']';
}

std::string synopsis(CLI::App const& app) {
  std::string options, arguments;
  for (CLI::Option const* option : app.get_options())
    if (option != app.get_help_ptr() && isShown(*option))
      (option->get_positional() ? arguments : options) += ' ' + optionUsage(*option);
  std::string const usage = options + arguments + (hasCommands(app) ? ' ' + roffItalic("COMMAND") + " ..." : "");
  return ".SY \"" + roffLine(commandName(app, ' ')) + "\"\n" + (usage.empty() ? usage : usage.substr(1) + '\n') + ".YS";
}

std::string optionEntry(CLI::Option const& option) {
  std::string names;
  auto const add = [&](std::string const& name) { names += (names.empty() ? "" : ", ") + withValue(name, option); };
  for (std::string const& name : option.get_snames()) add('-' + name);
  for (std::string const& name : option.get_lnames()) add("--" + name);
  if (option.get_positional()) names = roffItalic(option.get_name(true));
  return ".TP\n" + names + '\n' + roffWords(optionText(option)) + '\n';
}

/// Arguments first, then the options in their groups.
std::string options(CLI::App const& app) {
  std::string text;
  for (CLI::Option const* option : app.get_options())
    if (option->get_positional() && isShown(*option)) text += optionEntry(*option);
  for (std::string const& group : app.get_groups()) {
    if (group.empty()) continue;
    if (group != app.get_help_ptr()->get_group()) text += ".SS " + roffLine(group) + '\n';
    for (CLI::Option const* option : app.get_options())
      if (!option->get_positional() && option->get_group() == group) text += optionEntry(*option);
  }
  text.pop_back();
  return text;
}

std::string commandList(CLI::App const& app) {
  std::string text;
  for (CLI::App const* command : app.get_subcommands({}))
    text += ".TP\n" + pageReference(manualPageName(*command)) + '\n' + roffWords(command->get_description()) + '\n';
  text.pop_back();
  return text;
}

/// What stands below the options in the help: lines that are indented are examples, and a line such as
/// `Exit status: 0 success` belongs to the section of that name.
class Footer {
 public:
  Footer(std::string const& text, std::string proseSection) : proseSection_(std::move(proseSection)) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) take(line);
    endParagraph();
    if (!examples_.empty()) paragraphs_.push_back({"EXAMPLES", ".EX\n" + examples_ + ".EE"});
  }
  std::vector<Paragraph> const& paragraphs() const { return paragraphs_; }

 private:
  void take(std::string const& line) {
    std::size_t const colon = line.find(": ");
    std::string const section = upperCase(line.substr(0, colon));
    bool const isOfSection =
        colon != std::string::npos && std::ranges::find(sectionOrder, section) != sectionOrder.end();
    bool const isExample = line.starts_with("  ");
    if (isOfSection || isExample || line.empty()) endParagraph();
    if (isOfSection)
      paragraphs_.push_back({section, roffWords(line.substr(colon + 2))});
    else if (isExample)
      examples_ += roffLine(line.substr(2)) + '\n';
    else
      lines_ += line + '\n';
  }
  void endParagraph() {
    std::string const words = roffWords(std::exchange(lines_, {}));
    if (!words.empty()) paragraphs_.push_back({proseSection_, words});
  }

  std::string proseSection_;
  std::string lines_;
  std::string examples_;
  std::vector<Paragraph> paragraphs_;
};

void addFooters(Page& page, CLI::App const& app) {
  Footer const footer(app.get_footer(), hasCommands(app) ? "COMMANDS" : "DESCRIPTION");
  for (auto const& [section, text] : footer.paragraphs()) page.add(section, text);
  // How it ends is said once, for all commands.
  if (!app.get_parent() || page.has("EXIT STATUS")) return;
  Footer const common(app.get_parent()->get_footer(), "COMMANDS");
  for (auto const& [section, text] : common.paragraphs())
    if (section == "EXIT STATUS") page.add(section, text);
}

void addProse(Page& page, std::string const& prose) {
  std::istringstream lines(prose);
  std::vector<Paragraph> sections;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(".SH "))
      sections.push_back({line.substr(4), {}});
    else if (sections.empty())
      throw Failure("there is text ahead of the first section");
    else
      sections.back().text += (sections.back().text.empty() ? "" : "\n") + line;
  }
  for (auto const& [section, text] : sections) {
    if (std::ranges::find(sectionsOfHelp, section) != sectionsOfHelp.end())
      throw Failure("the section " + section + " is made from the help");
    page.add(section, text);
  }
}

std::string pageList(CLI::App const& app) {
  if (!hasCommands(app)) return pageReference(manualPageName(*app.get_parent()));
  std::string text;
  for (CLI::App const* command : app.get_subcommands({}))
    text += (text.empty() ? "" : ",\n") + pageReference(manualPageName(*command));
  return text;
}

}  // namespace

std::string manualPageName(CLI::App const& app) { return commandName(app, '-'); }

std::string manualPage(CLI::App const& app, std::string const& prose) {
  Page page;
  std::string const name = manualPageName(app);
  page.add("NAME", roffLine(name) + " \\- " + roffWords(withFirst(std::tolower, app.get_description())));
  page.add("SYNOPSIS", synopsis(app));
  page.add("OPTIONS", options(app));
  if (hasCommands(app)) page.add("COMMANDS", commandList(app));
  addFooters(page, app);
  page.add("SEE ALSO", pageList(app));
  addProse(page, prose);
  if (!page.has("DESCRIPTION"))
    page.add("DESCRIPTION", roffWords(withFirst(std::toupper, app.get_description()) + '.'));
  CLI::App const& program = app.get_parent() ? *app.get_parent() : app;
  return ".\\\" Made from the help of " + commandName(app, ' ') + ".\n.TH \"" + roffLine(upperCase(name)) +
         "\" 1 \"\" \"" + roffLine(program.version()) + "\"\n.nr HY 0\n.ss 12 0\n.ad l\n" + page.text();
}

}  // namespace Tool
