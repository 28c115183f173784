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
std::vector<Diagnostic> virtualRouterWarnings(ConfigFile const& file, RouterAdvt::AdvertRequest const& request);

/// A warning for each kind of thing that the advertisement lacks because it did not fit, from what building it told.
std::vector<Diagnostic> fitWarnings(ConfigFile const& file, RouterAdvt::AdvertRequest const& request,
                                    RouterAdvt::LeftOut const& leftOut);

/// Prints all warnings about an advertisement that lacks what `leftOut` names.
void printAdvertWarnings(std::ostream& err, ConfigFile const& file, RouterAdvt::AdvertRequest const& request,
                         RouterAdvt::LeftOut const& leftOut);

}  // namespace Tool
