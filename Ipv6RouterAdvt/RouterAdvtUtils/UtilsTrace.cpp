#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>

namespace RouterAdvt {

Trace::Handle const utilsTrace("RouterAdvtUtils");

}  // namespace RouterAdvt
