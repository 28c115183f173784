#include <RouterPlatform/Trace/Trace.h>
#include <programs/common/config/AdvertOptions.h>

#include <cstdlib>

namespace Tool {

void traceLevelsAre(std::string const& settings) {
  Trace::levelsIs("*/");
  if (char const* const environment = std::getenv("TRACE")) {
    try {
      Trace::levelsIs(environment);
    } catch (Trace::SettingsError const&) {  // reported at the start of the program
    }
  }
  if (!settings.empty()) Trace::levelsIs(settings);
}

}  // namespace Tool
