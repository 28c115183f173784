// Prints the neighbouring routers that the router advertisement agent of this machine has heard, and each change, until
// the agent ends its table.

#include <Ipv6RouterAdvt/Heard/RouterNeighborRaReader.h>

#include <chrono>
#include <iostream>

int main() {
  RouterAdvt::RouterNeighborRaReader neighbors;
  if (auto const error = neighbors.attach()) {
    std::cerr << error.text << '\n';
    return 1;
  }
  while (std::cout) {
    auto const seen = neighbors.changeCount();
    neighbors.forEach([](RouterAdvt::RouterNeighborRa const& row) {
      std::cout << row.key().intfId().view() << ' ' << row.key().neighborAddr().toString() << ' '
                << row.lastRaReceived() << '\n';
    });
    std::cout << neighbors.count() << " routers" << std::endl;
    while (neighbors.wait(seen, std::chrono::minutes(1)) == SharedTable::WaitResult::timedOut) continue;
    if (!neighbors.attached()) {
      std::cerr << neighbors.attachError().text << '\n';
      return 0;
    }
  }
  return 1;
}
