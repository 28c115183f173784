#pragma once

#include <Ipv6RouterAdvt/Heard/RouterNeighborRaReader.h>
#include <programs/common/trees/ReflectedJson.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// The table of neighbouring routers at one moment, and the state of its writer.
struct NeighborReport {
  enum class Order { intf, age };

  std::vector<RouterAdvt::RouterNeighborRa> neighbors;
  bool attached = false;
  std::string problem;  ///< why an existing table cannot be read
  SharedTable::WriterState writer;
  Fwk::U64 damagedPlaces = 0;
  Fwk::Seconds now = 0;  ///< realtime clock
};

/// Reads the table: the rows of one interface, or all if it is empty. Ages are relative to `now`.
NeighborReport readNeighbors(RouterAdvt::RouterNeighborRaReader const& reader, Net::IntfId const& intfId,
                             NeighborReport::Order order, Fwk::Seconds now);

/// For people: one line per router, then remarks about the writer or damage.
std::string neighborsText(NeighborReport const& report);
Json neighborsJson(NeighborReport const& report);

/// A span of time in words: `7.5 s`, `5 min 12 s`, `3 h 5 min`, `2 d 4 h`.
std::string durationText(Fwk::Seconds seconds);

}  // namespace Tool
