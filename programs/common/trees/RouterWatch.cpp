#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/trees/RecordView.h>
#include <programs/common/trees/RouterWatch.h>

#include <utility>

namespace Tool {

using Net::Ip6Addr;
using RouterAdvt::RaPacket;
using RouterAdvt::RouterNeighbors;

RouterWatch::RouterWatch(Net::IntfId const& intfId, Observer& observer)
    : intfId_(intfId),
      observer_(observer),
      packets_(Fwk::create<RouterAdvt::RaPacketStatus>(Fwk::Name("raPacketStatus"))),
      neighbors_(RouterAdvt::routerNeighborStatusFactory("routerNeighborStatus")),
      routers_(neighbors_->neighborIs(intfId)),
      packetsSubscription_(observe(packets_, [this](Fwk::Notification const& n) { onPacket(n); })),
      routersSubscription_(observe(routers_, [this](Fwk::Notification const& n) { onRouters(n); })) {}

RouterWatch::~RouterWatch() = default;

bool RouterWatch::hear(RaPacket const& packet) {
  Ip6Addr const router = packet.srcIp6Addr();
  if (packet.isDeathPacket()) {
    packets_->raPacketIs(packet);
    withdraw(router);
    return true;
  }
  if (!routers_->linkLocalAddr(router) && routers_->linkLocalAddr().size() >= routersMax) {
    if (!std::exchange(toldTooMany_, true)) observer_.onTooManyRouters();
    return false;
  }
  neighbors_->routerNeighborIs({intfId_, {}, router});
  routers_->linkLocalAddrIs(router);
  packets_->raPacketIs(packet);
  return true;
}

void RouterWatch::withdraw(Ip6Addr const& router) {
  former_.erase(router);
  if (neighbors_->routerNeighbor(intfId_).linkLocalAddr() == router) neighbors_->routerNeighborDel(intfId_);
  routers_->linkLocalAddrDel(router);
}

void RouterWatch::onPacket(Fwk::Notification const& notification) {
  auto const* const key = notification.key.as<Net::IntfId>();
  if (!key) return;
  RaPacket const packet = packets_->raPacket(*key);
  std::vector<RecordValue> now = recordValues(Fwk::objectRef(packet));
  std::vector<RecordValue>& former = former_[packet.srcIp6Addr()];
  std::vector<RecordChange> const changes = recordChanges(former, now);
  former = std::move(now);
  if (!changes.empty()) observer_.onChange(packet, changes);
}

void RouterWatch::onRouters(Fwk::Notification const& notification) {
  auto const* const router = notification.key.as<Ip6Addr>();
  if (!router) return;
  if (routers_->linkLocalAddr(*router))
    observer_.onRouter(*router);
  else
    observer_.onRouterGone(*router);
}

}  // namespace Tool
