#pragma once

#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <RouterPlatform/SharedTable/Reader.h>

#include <utility>

namespace RouterAdvt {

/// Reads the table of neighbouring routers from any process. This header and the platform library are all that a
/// program needs.
///
///     RouterAdvt::RouterNeighborRaReader neighbors;
///     if (auto error = neighbors.attach()) return fail(error.text);
///     neighbors.forEach([](RouterAdvt::RouterNeighborRa const& row) { print(row.key().neighborAddr()); });
class RouterNeighborRaReader : public SharedTable::Reader<RouterNeighborRa> {
 public:
  explicit RouterNeighborRaReader(SharedTable::ReaderOptions options = {})
      : Reader(routerNeighborRaTablePath, routerNeighborRaCollection, std::move(options)) {}
};

}  // namespace RouterAdvt
