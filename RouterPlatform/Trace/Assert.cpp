#include <RouterPlatform/Trace/Assert.h>

#include <cstdio>
#include <cstdlib>

namespace Trace {

void assertionFailed(Location location, std::string_view expression) noexcept {
  std::fprintf(stderr, "%s:%d: %s: assertion \"%.*s\" failed\n", location.source, location.line, location.function,
               static_cast<int>(expression.size()), expression.data());
  std::abort();
}

}  // namespace Trace
