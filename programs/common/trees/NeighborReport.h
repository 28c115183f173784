#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/RouterNeighborRaReader.h>
#include <programs/common/trees/ReflectedJson.h>

#include <optional>
#include <string>
#include <vector>

namespace Tool {

/// What the table of neighbouring routers holds at one moment, and how it stands with its writer.
struct NeighborReport {
  enum class Order { intf, age };

  std::vector<RouterAdvt::RouterNeighborRa> neighbors;
  bool attached = false;
  std::string problem;  ///< why a table that is there cannot be read
  SharedTable::WriterState writer;
  Fwk::U64 damagedPlaces = 0;
  Fwk::Seconds now = 0;  ///< realtime clock
};

/// Reads the table; of one interface only, unless that is empty. `now` is the time to reckon ages with.
NeighborReport readNeighbors(RouterAdvt::RouterNeighborRaReader const& reader, Net::IntfId const& intfId,
                             NeighborReport::Order order, Fwk::Seconds now);

/// For people: a line a router, then what is to be said about the writer or damage.
std::string neighborsText(NeighborReport const& report);
Json neighborsJson(NeighborReport const& report);

/// A span of time as people say it: `7.5 s`, `5 min 12 s`, `3 h 5 min`, `2 d 4 h`.
std::string durationText(Fwk::Seconds seconds);

}  // namespace Tool
