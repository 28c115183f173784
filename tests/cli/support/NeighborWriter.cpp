// Keeps the table of neighbouring routers for a test: says "mounted", then hears a router for each line "INTERFACE
// ADDRESS" of standard input and says "written".

#include <programs/common/trees/NeighborTable.h>

#include <iostream>
#include <string>

int main() {
  Tool::NeighborTable table;
  if (!table.problem().empty()) {
    std::cerr << table.problem() << '\n';
    return 1;
  }
  std::cout << "mounted" << std::endl;
  std::string intf;
  std::string router;
  while (std::cin >> intf >> router) {
    table.hear(Net::IntfId(intf), Net::Ip6Addr(router));
    std::cout << "written" << std::endl;
  }
}
