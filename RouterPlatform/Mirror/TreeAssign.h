#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Mirror/ChangeStream.h>

namespace Fwk {

/// Changes `to` and all below it until they say what `from` and all below it say. Only differences are set, so the
/// observers of `to` hear of nothing else. Both are of one type; their own keys may differ. What is assigned are the
/// attributes that type records call streamed: scalars that can be set, collections, children.
///
/// Members end up in the order in which `from` has them. A collection adds at its end only: a member that has to stand
/// behind another one than it does is taken out and made again, and so are those behind a place where one comes in.
/// Where order carries nothing, which `anyOrder` says of a collection's attribute, those that are there stay where they
/// are and others are added at the end.
///
/// Throws std::invalid_argument for two types, std::bad_alloc, and what the setters of `to` throw as
/// std::runtime_error; `to` is then somewhere in between. Thread rule: that of the trees.
ROUTER_PLATFORM_EXPORT void assignTree(Ptr<Entity> const& from, Ptr<Entity> const& to,
                                       ChangeStream::AttributePredicate const& anyOrder = {});

}  // namespace Fwk
