#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/text/Text.h>
#include <programs/common/trees/ListenReport.h>
#include <programs/common/trees/RecordView.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace Tool {

using Net::Ip6Addr;

void ListenReport::listening(std::string const& device) {
  if (!json_) say("listening on " + printable(device) + " for Router Advertisements\n");
}

void ListenReport::onChange(RouterAdvt::RaPacket const& packet, std::vector<RecordChange> const& changes) {
  std::string const router = packet.srcIp6Addr().toString();
  if (json_)
    return say(Json{{"event", "change"},
                    {"router", router},
                    {"changes", changesJson(changes)},
                    {"record", recordJson(Fwk::objectRef(packet))}});
  bool const isFirst = std::ranges::all_of(changes, [](RecordChange const& change) { return change.before.is_null(); });
  say("router " + router +
      (isFirst ? " advertises\n" + recordText(Fwk::objectRef(packet))
               : " advertises a change\n" + changesText(changes)));
}

void ListenReport::onTooManyRouters() {
  constexpr Fwk::U32 most = RouterWatch::routersMax;
  if (json_) return say(Json{{"event", "tooManyRouters"}, {"routers", most}});
  say("more than " + std::to_string(most) + " routers: those beyond are only counted\n");
}

void ListenReport::dropped(Ip6Addr const& source, std::string const& reason) {
  if (json_) return say(Json{{"event", "dropped"}, {"source", source.toString()}, {"reason", reason}});
  say("dropped an advertisement from " + source.toString() + ": " + reason + '\n');
}

void ListenReport::summary(ListenCounts const& counts, Fwk::U32 routers, std::chrono::duration<double> time) {
  Json const seconds(std::round(time.count() * 10) / 10);
  if (json_)
    return say(Json{{"event", "summary"},
                    {"advertisements", counts.heard},
                    {"dropped", counts.dropped},
                    {"notKept", counts.notKept},
                    {"lost", counts.lost},
                    {"routers", routers},
                    {"seconds", seconds}});
  say(std::to_string(counts.heard) + (counts.heard == 1 ? " advertisement, " : " advertisements, ") +
      (counts.notKept > 0 ? std::to_string(counts.notKept) + " of routers too many, " : "") +
      std::to_string(counts.dropped) + " dropped, " +
      (counts.lost > 0 ? std::to_string(counts.lost) + " lost as they came too fast, " : "") + std::to_string(routers) +
      (routers == 1 ? " router" : " routers") + " at the end, in " + seconds.dump() + " s\n");
}

void ListenReport::event(char const* name, Ip6Addr const& router, char const* words) {
  if (json_) return say(Json{{"event", name}, {"router", router.toString()}});
  say("router " + router.toString() + ' ' + words + '\n');
}

void ListenReport::say(std::string const& text) { out_ << text << std::flush; }

}  // namespace Tool
