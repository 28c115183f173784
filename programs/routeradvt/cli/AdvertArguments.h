#pragma once

#include <programs/common/config/AdvertOptions.h>

#include <string>

namespace CLI {
class App;
}

namespace Tool {

/// Adds the arguments and options that `build` and `send` share. `device`: how the help calls the device whose values
/// hold where neither options nor file give one; empty: there is no device.
void addAdvertOptions(CLI::App& app, AdvertOptions& options, std::string const& device = {});

}  // namespace Tool
