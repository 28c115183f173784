#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRaStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborStatus.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighbors.h>
#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfConfig.h>
#include <Ipv6RouterAdvt/RouterAdvt/IntfStatus.h>
#include <Ipv6RouterAdvt/RouterAdvt/ProcFileDirDataSet.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>

/// Entities that stand on their own. Each call makes a new one, every attribute at its default, notification active,
/// and returns the only reference to it. Throws std::bad_alloc, having undone everything; a text that is too long for
/// a `Name` or an `IntfId` throws std::length_error where it is made one. An entity is used by the thread that uses the
/// tree it hangs in.
namespace RouterAdvt {

ROUTER_ADVT_EXPORT Ptr<Config> configFactory(Name name);
ROUTER_ADVT_EXPORT Ptr<IntfConfig> intfConfigFactory(IntfId intfId);
ROUTER_ADVT_EXPORT Ptr<Status> statusFactory(Name name);
ROUTER_ADVT_EXPORT Ptr<IntfStatus> intfStatusFactory(IntfId intfId);
ROUTER_ADVT_EXPORT Ptr<ProcFileDirDataSet> procFileDirDataSetFactory(Name name);
ROUTER_ADVT_EXPORT Ptr<RouterNeighborStatus> routerNeighborStatusFactory(Name name);
ROUTER_ADVT_EXPORT Ptr<RouterNeighbors> routerNeighborsFactory(IntfId intfId);

namespace Table {

ROUTER_ADVT_EXPORT Ptr<RouterNeighborRaStatus> routerNeighborRaStatusFactory(Name name);
/// The same with a table of other options than the default ones.
ROUTER_ADVT_EXPORT Ptr<RouterNeighborRaStatus> routerNeighborRaStatusFactory(Name name,
                                                                             SharedTable::WriterOptions const& options);

}  // namespace Table

}  // namespace RouterAdvt
