#pragma once

#include <tools/routeradvt/Advert.h>
#include <tools/routeradvt/Command.h>

namespace Tool {

/// Says, among the errors, what of the interface's configuration the advertisement will not say as it is written.
void printAdvertWarnings(Console& console, ConfigFile const& file, Advert const& advert);

}  // namespace Tool
