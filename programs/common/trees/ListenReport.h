#pragma once

#include <programs/common/trees/ReflectedJson.h>
#include <programs/common/trees/RouterWatch.h>

#include <chrono>
#include <iosfwd>
#include <string>

namespace Tool {

/// The counts of `listen`.
struct ListenCounts {
  Fwk::U64 heard = 0;    ///< valid advertisements
  Fwk::U64 notKept = 0;  ///< of these, advertisements of routers beyond the most that are kept
  Fwk::U64 dropped = 0;
  Fwk::U64 lost = 0;  ///< messages for which the kernel had no room
};

/// Says what `listen` hears, in words or as JSON, a line or a few an event, each at once.
class ListenReport final : public RouterWatch::Observer {
 public:
  ListenReport(std::ostream& out, bool json) : out_(out), json_(json) {}

  void listening(std::string const& device);
  void onRouter(Net::Ip6Addr const& router) override { event("router", router, "is heard"); }
  void onRouterGone(Net::Ip6Addr const& router) override { event("routerGone", router, "has withdrawn"); }
  void onChange(RouterAdvt::RaPacket const& packet, std::vector<RecordChange> const& changes) override;
  void onTooManyRouters() override;
  void dropped(Net::Ip6Addr const& source, std::string const& reason);
  /// `routers`: how many there are at the end.
  void summary(ListenCounts const& counts, Fwk::U32 routers, std::chrono::duration<double> time);

 private:
  void event(char const* name, Net::Ip6Addr const& router, char const* words);
  void say(Json const& json) { say(jsonText(json) + '\n'); }
  void say(std::string const& text);

  std::ostream& out_;
  bool json_;
};

}  // namespace Tool
