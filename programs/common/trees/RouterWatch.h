#pragma once

#include <Ipv6RouterAdvt/Heard/RaPacketStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborStatus.h>
#include <RouterPlatform/Fwk/Observe.h>

#include <functional>
#include <map>
#include <vector>

namespace Tool {

struct RecordChange;
struct RecordValue;

/// Keeps the advertisements of the routers of one link in the status entities, and reports changes by observing them.
class RouterWatch {
 public:
  /// Gets the reports, from within `hear`.
  struct Observer {
    virtual ~Observer() = default;
    /// A router is heard for the first time, or again after it was gone.
    virtual void onRouter(Net::Ip6Addr const& router) = 0;
    /// A router has withdrawn.
    virtual void onRouterGone(Net::Ip6Addr const& router) = 0;
    /// More than `routersMax` routers are heard; reported once.
    virtual void onTooManyRouters() = 0;
    /// The latest packet is another one than that router's former one. `changes`: against that one, or all values when
    /// it is the router's first.
    virtual void onChange(RouterAdvt::RaPacket const& packet, std::vector<RecordChange> const& changes) = 0;
  };

  /// The most routers that are kept: an attacker can pretend to be any number.
  static constexpr Fwk::U32 routersMax = 1000;

  RouterWatch(Net::IntfId const& intfId, Observer& observer);
  ~RouterWatch();
  RouterWatch(RouterWatch const&) = delete;
  RouterWatch& operator=(RouterWatch const&) = delete;

  /// An advertisement that was found valid. False: it is passed over, being of one router too many.
  bool hear(RouterAdvt::RaPacket const& packet);

  /// Routers that have not withdrawn.
  RouterAdvt::RouterNeighbors const& routers() const { return *routers_; }

  /// The latest router of the interface, until it withdraws, and all of them.
  RouterAdvt::RouterNeighborStatus const& status() const { return *neighbors_; }

 private:
  void withdraw(Net::Ip6Addr const& router);
  void onPacket(Fwk::Notification const& notification);
  void onRouters(Fwk::Notification const& notification);

  Net::IntfId intfId_;
  Observer& observer_;
  Fwk::Ptr<RouterAdvt::RaPacketStatus> packets_;
  Fwk::Ptr<RouterAdvt::RouterNeighborStatus> neighbors_;
  Fwk::Ptr<RouterAdvt::RouterNeighbors> routers_;
  /// The status keeps one packet an interface; where several routers speak, each is compared with itself. Of those that
  /// have not withdrawn.
  std::map<Net::Ip6Addr, std::vector<RecordValue>> former_;
  bool toldTooMany_ = false;
  Fwk::Subscription packetsSubscription_;
  Fwk::Subscription routersSubscription_;
};

}  // namespace Tool
