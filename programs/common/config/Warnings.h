#pragma once

#include <programs/common/config/Advert.h>
#include <programs/common/config/ConfigFile.h>

#include <iosfwd>
#include <vector>

namespace Tool {

/// What a configuration says that will not be sent, or not as it is written; in the order of the file. With what the
/// file itself was warned about.
std::vector<Diagnostic> configWarnings(ConfigFile const& file);

/// The same for one interface and its link, without what the file itself was warned about.
std::vector<Diagnostic> intfWarnings(ConfigFile const& file, RouterAdvt::IntfConfig const& intf);

/// What the file itself was warned about, as far as it is about that interface or its link.
std::vector<Diagnostic> fileWarningsOf(ConfigFile const& file, RouterAdvt::IntfConfig const& intf);

/// What an advertisement on behalf of a virtual router lacks when there is none.
std::vector<Diagnostic> virtualRouterWarnings(ConfigFile const& file, Advert const& advert);

/// What does not fit into that advertisement, and why: found out by building it.
std::vector<Diagnostic> fitWarnings(ConfigFile const& file, Advert const& advert);

/// Prints all that is to be said before that advertisement is built.
void printAdvertWarnings(std::ostream& err, ConfigFile const& file, Advert const& advert);

}  // namespace Tool
