#pragma once

#include <RouterPlatform/Fwk/Entity.h>

namespace Fwk {

/// Changes `to` and everything below it until they equal `from` and everything below that. Only differences are set, so
/// the observers of `to` hear of nothing else. Both are of one type; their own keys may differ. Attributes that type
/// records call streamed are assigned: scalars that can be set, collections, children.
///
/// Where the order of members counts (`AttributeRecord::memberOrder`), they end up in the order of `from`. A collection
/// adds at its end only, so a new member in the middle makes those behind it leave and come again: they are removed,
/// made anew and notified. Where order is arbitrary, members that are there stay, and new ones come last.
///
/// A new member is notified before it is filled: its observer sees defaults. An observer marks; act on the mark when
/// `assignTree` has returned. `TreeObserver` does both.
///
/// Throws std::invalid_argument for two types, std::bad_alloc, and std::runtime_error for whatever the setters of `to`
/// throw; `to` is then partly assigned. Thread rule: that of the trees.
ROUTER_PLATFORM_EXPORT void assignTree(Ptr<Entity> const& from, Ptr<Entity> const& to);

}  // namespace Fwk
