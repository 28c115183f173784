#include <RouterPlatform/Base/OrderedTable.h>

namespace Fwk {

void OrderedWalk::enter(OrderedWalk*& walks) noexcept {
  outer = walks;
  walks = this;
}

void OrderedWalk::leave(OrderedWalk*& walks) noexcept {
  OrderedWalk** link = &walks;
  while (*link != this) link = &(*link)->outer;
  *link = outer;
}

}  // namespace Fwk
