#pragma once

#include <programs/common/trees/ReflectedJson.h>
#include <programs/common/trees/TreeWatch.h>

#include <string>
#include <vector>

/// Trees of any entity types and their changes, for people and as JSON.
namespace Tool {

/// The trees one after another.
std::string treesText(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots);
/// An object from the name of each tree's root to the tree.
Json treesJson(std::vector<Fwk::Ptr<Fwk::Entity>> const& roots);

/// One line, and more below it for an entity that was added.
std::string changeText(TreeChange const& change);
/// An event: `set` and `added` with the path and the value, `removed` with the path.
Json changeJson(TreeChange const& change);

}  // namespace Tool
