#include <tools/routeradvt/AdvertOutput.h>
#include <tools/routeradvt/Warnings.h>

#include <ostream>

namespace Tool {

void printAdvertWarnings(Console& console, ConfigFile const& file, Advert const& advert) {
  if (!advert.srcAddr.isLinkLocal())
    console.err << "warning: --src: " << advert.srcAddr.toString()
                << " is not link-local; receivers drop the advertisement (RFC 4861 6.1.2)\n";
  std::vector<Diagnostic> warnings = fileWarningsOf(file, *advert.config);
  auto const append = [&](std::vector<Diagnostic> const& more) {
    warnings.insert(warnings.end(), more.begin(), more.end());
  };
  append(intfWarnings(file, *advert.config));
  append(virtualRouterWarnings(file, advert));
  append(fitWarnings(file, advert));
  sortByPlace(warnings);
  for (Diagnostic const& warning : warnings) console.err << diagnosticLine(file.name, warning, "warning: ") << '\n';
}

}  // namespace Tool
