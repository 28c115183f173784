#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>

namespace RouterAdvt {

Ptr<Config> configFactory(Name name) { return Fwk::create<Config>(name); }
Ptr<IntfConfig> intfConfigFactory(IntfId intfId) { return Fwk::create<IntfConfig>(intfId); }
Ptr<Status> statusFactory(Name name) { return Fwk::create<Status>(name); }
Ptr<IntfStatus> intfStatusFactory(IntfId intfId) { return Fwk::create<IntfStatus>(intfId); }
Ptr<ProcFileDirDataSet> procFileDirDataSetFactory(Name name) { return Fwk::create<ProcFileDirDataSet>(name); }
Ptr<RouterNeighborStatus> routerNeighborStatusFactory(Name name) { return Fwk::create<RouterNeighborStatus>(name); }
Ptr<RouterNeighbors> routerNeighborsFactory(IntfId intfId) { return Fwk::create<RouterNeighbors>(intfId); }

Ptr<Table::RouterNeighborRaStatus> Table::routerNeighborRaStatusFactory(Name name) {
  return Fwk::create<RouterNeighborRaStatus>(name);
}

Ptr<Table::RouterNeighborRaStatus> Table::routerNeighborRaStatusFactory(Name name,
                                                                        SharedTable::WriterOptions const& options) {
  return Fwk::create<RouterNeighborRaStatus>(name, options);
}

}  // namespace RouterAdvt
