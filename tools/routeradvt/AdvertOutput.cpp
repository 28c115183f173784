#include <tools/routeradvt/AdvertOutput.h>
#include <tools/routeradvt/Warnings.h>

#include <ostream>

namespace Tool {

void printAdvertWarnings(Console& console, ConfigFile const& file, Advert const& advert) {
  std::vector<Diagnostic> warnings = intfWarnings(file, *advert.config);
  for (Diagnostic& warning : virtualRouterWarnings(file, advert)) warnings.push_back(std::move(warning));
  for (Diagnostic& warning : fitWarnings(file, advert)) warnings.push_back(std::move(warning));
  // What was found when the file was read is of interest as far as it is about this interface.
  std::string const path = advert.config->fullName() + '/';
  for (Diagnostic const& warning : file.warnings)
    if (warning.path.starts_with(path)) warnings.push_back(warning);
  sortByPlace(warnings);
  for (Diagnostic const& warning : warnings) console.err << diagnosticLine(file.name, warning, "warning: ") << '\n';
}

}  // namespace Tool
