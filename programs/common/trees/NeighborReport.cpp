#include <programs/common/text/Text.h>
#include <programs/common/text/TextTable.h>
#include <programs/common/trees/NeighborReport.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstdio>
#include <ctime>

namespace Tool {

namespace {

using RouterAdvt::RouterNeighborRa;

constexpr double nanosecondsPerSecond = 1e9;

Fwk::Seconds secondsOf(Fwk::U64 nanoseconds) { return static_cast<double>(nanoseconds) / nanosecondsPerSecond; }

Fwk::Seconds ageOf(RouterNeighborRa const& neighbor, Fwk::Seconds now) {
  return std::max(0.0, now - neighbor.lastRaReceived());
}

std::string clockText(Fwk::Seconds seconds) {
  std::time_t const time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  gmtime_r(&time, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S UTC", &parts)};
}

/// When a writer that has died was last known to live.
Fwk::U64 lastSignOfLife(SharedTable::WriterState const& writer) {
  return std::max({writer.retiredTime, writer.changeTime, writer.createdTime});
}

std::string twoUnits(long long value, long long perGreater, char const* greater, char const* lesser) {
  std::string text = std::to_string(value / perGreater) + ' ' + greater;
  if (value % perGreater != 0) text += ' ' + std::to_string(value % perGreater) + ' ' + lesser;
  return text;
}

Json roundedTo(double value, double step) { return std::round(value / step) * step; }

}  // namespace

std::string durationText(Fwk::Seconds seconds) {
  if (seconds < 99.95) {
    char text[16];
    std::snprintf(text, sizeof text, "%.1f s", seconds);
    return text;
  }
  if (!(seconds < 1e15)) return "for ever";
  long long const whole = std::llround(seconds);
  if (whole < 3600) return twoUnits(whole, 60, "min", "s");
  if (whole < 86400) return twoUnits(whole / 60, 60, "h", "min");
  return twoUnits(whole / 3600, 24, "d", "h");
}

NeighborReport readNeighbors(RouterAdvt::RouterNeighborRaReader const& reader, Net::IntfId const& intfId,
                             NeighborReport::Order order, Fwk::Seconds now) {
  NeighborReport report;
  report.now = now;
  report.attached = reader.attached();
  if (!report.attached && reader.attachError().code != SharedTable::Errc::noTable)
    report.problem = reader.attachError().text;
  report.writer = reader.writer();
  SharedTable::WalkResult const walked = reader.forEach([&](RouterNeighborRa const& neighbor) {
    if (intfId.empty() || neighbor.key().intfId() == intfId) report.neighbors.push_back(neighbor);
  });
  report.damagedPlaces = walked.corrupt;
  std::ranges::sort(report.neighbors, [order](RouterNeighborRa const& a, RouterNeighborRa const& b) {
    if (order == NeighborReport::Order::age)  // a NaN has its place, too
      if (auto const later = std::strong_order(b.lastRaReceived(), a.lastRaReceived()); later != 0) return later < 0;
    return a.key() < b.key();
  });
  return report;
}

std::string neighborsText(NeighborReport const& report) {
  if (!report.problem.empty()) return "the table cannot be read: " + printable(report.problem) + '\n';
  if (!report.attached) return "there is no table: no program keeps one\n";
  std::string text;
  if (report.neighbors.empty()) {
    text = "no neighbouring router\n";
  } else {
    TextTable table({"interface", "router", "last advertisement"});
    for (RouterNeighborRa const& neighbor : report.neighbors)
      table.add({printable(neighbor.key().intfId().toString()), neighbor.key().neighborAddr().toString(),
                 neighbor.lastRaReceived() == 0 ? "never" : durationText(ageOf(neighbor, report.now)) + " ago"});
    text = table.text();
  }
  if (!report.writer.alive) {
    Fwk::Seconds const since = secondsOf(lastSignOfLife(report.writer));
    text += "no writer is alive; the last sign of one is of " + clockText(since) + ", " +
            durationText(std::max(0.0, report.now - since)) + " ago\n";
  }
  if (report.damagedPlaces > 0)
    text +=
        "the table is damaged in " + std::to_string(report.damagedPlaces) + " places; what stood there is missing\n";
  return text;
}

Json neighborsJson(NeighborReport const& report) {
  Json result{{"table", report.attached}, {"neighbors", Json::array()}};
  for (RouterNeighborRa const& neighbor : report.neighbors)
    result["neighbors"].push_back({{"interface", neighbor.key().intfId().toString()},
                                   {"router", neighbor.key().neighborAddr().toString()},
                                   {"lastRaReceived", neighbor.lastRaReceived()},
                                   {"age", roundedTo(ageOf(neighbor, report.now), 0.1)}});
  if (!report.problem.empty()) result["problem"] = report.problem;
  if (!report.attached) return result;
  result["writer"] = {{"alive", report.writer.alive}, {"pid", report.writer.pid}};
  if (!report.writer.alive) result["writer"]["lastSign"] = secondsOf(lastSignOfLife(report.writer));
  result["damagedPlaces"] = report.damagedPlaces;
  return result;
}

}  // namespace Tool
