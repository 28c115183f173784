#pragma once

#include <Ipv6RouterAdvt/Heard/RouterNeighborRaStatus.h>

#include <string>

namespace Tool {

/// The table of neighbouring routers that other processes read. It is mounted while this object lives.
class NeighborTable {
 public:
  NeighborTable();
  NeighborTable(NeighborTable const&) = delete;
  NeighborTable& operator=(NeighborTable const&) = delete;

  /// Why other processes cannot read the table; empty if they can.
  std::string problem() const;

  /// An advertisement of that router has arrived now. A table that somebody has removed is published anew.
  void hear(Net::IntfId const& intfId, Net::Ip6Addr const& router);

 private:
  void mountAnewIfLost();

  Fwk::Ptr<Fwk::Entity> root_;  ///< holds the rows; its end unmounts the table
  Fwk::Ptr<RouterAdvt::Table::RouterNeighborRaStatus> rows_;
};

}  // namespace Tool
