#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>

namespace RouterAdvt {

Trace::Handle const utilsTrace("RouterAdvtUtils");

}  // namespace RouterAdvt
