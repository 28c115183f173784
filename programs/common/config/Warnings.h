#pragma once

#include <programs/common/config/Advert.h>
#include <programs/common/config/ConfigFile.h>

#include <iosfwd>
#include <vector>

namespace Tool {

/// Warnings about configured values that are not sent, are sent differently, or are ignored by receivers; in the order
/// of the file, together with the warnings of the file itself.
std::vector<Diagnostic> configWarnings(ConfigFile const& file);

/// The same for one interface and its link, without the warnings of the file itself.
std::vector<Diagnostic> intfWarnings(ConfigFile const& file, RouterAdvt::IntfConfig const& intf);

/// Those warnings of the file itself that are about that interface or its link.
std::vector<Diagnostic> fileWarningsOf(ConfigFile const& file, RouterAdvt::IntfConfig const& intf);

/// What an advertisement on behalf of a virtual router lacks when there is none.
std::vector<Diagnostic> virtualRouterWarnings(ConfigFile const& file, Advert const& advert);

/// What does not fit into that advertisement, and why: found out by building it.
std::vector<Diagnostic> fitWarnings(ConfigFile const& file, Advert const& advert);

/// Prints all that is to be said before that advertisement is built.
void printAdvertWarnings(std::ostream& err, ConfigFile const& file, Advert const& advert);

}  // namespace Tool
