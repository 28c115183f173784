#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <programs/common/trees/NeighborTable.h>

#include <chrono>

namespace Tool {

NeighborTable::NeighborTable()
    : root_(RouterAdvt::routerNeighborStatusFactory("routeradvt")),
      rows_(RouterAdvt::Table::routerNeighborRaStatusFactory("neighbors")) {
  rows_->parentIs(root_.get(), 0);
}

NeighborTable::~NeighborTable() { rows_->parentIs(nullptr, 0); }

/// Not a table that could not be mounted in the first place: another program may keep that one.
void NeighborTable::mountAnewIfLost() {
  bool const lost =
      rows_->verifyMount() && rows_->routerNeighborRaControl()->mountStatus() == SharedTable::MountStatus::failed;
  if (!lost) return;
  rows_->parentIs(nullptr, 0);
  rows_->parentIs(root_.get(), 0);
}

std::string NeighborTable::problem() const { return rows_->mountError().text; }

void NeighborTable::hear(Net::IntfId const& intfId, Net::Ip6Addr const& router) {
  mountAnewIfLost();
  std::chrono::duration<Fwk::Seconds> const now = std::chrono::system_clock::now().time_since_epoch();
  rows_->routerNeighborRaIs(RouterAdvt::RouterNeighborRa(RouterAdvt::RouterNeighborRaKey(intfId, router), now.count()));
}

}  // namespace Tool
