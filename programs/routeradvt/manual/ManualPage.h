#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Tool {

/// `routeradvt`, or `routeradvt-COMMAND`.
std::string manualPageName(CLI::App const& app);

/// The page in section 1 about the program or one of its commands, for man(1): what the help says, in sections.
/// `prose`: what it does not say, in roff, where each section begins with a line `.SH NAME` and is put behind what the
/// help has for it. Throws `Failure` where it has what is the help's alone to say, or text ahead of the first section.
std::string manualPage(CLI::App const& app, std::string const& prose);

}  // namespace Tool
