#pragma once

#include <programs/common/config/AdvertOptions.h>
#include <programs/routeradvt/cli/Options.h>

#include <string>

namespace Tool {

/// Adds the arguments and options that `build` and `send` share. `device`: the name that the help gives to the device
/// whose values hold where neither options nor file give one; empty: there is no device.
void addAdvertOptions(Options& options, AdvertOptions& advert, std::string const& device = {});

}  // namespace Tool
