#pragma once

#include <programs/common/trees/ReflectedJson.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// Records as their type records describe them.
namespace Tool {

/// One value somewhere in a record.
struct RecordValue {
  std::string path;  ///< an attribute's name, or a path such as `prefixInfo[2001:db8::/64]/validLifetime`
  Json value;
};

/// Every value of a record in order, members of its collections included.
std::vector<RecordValue> recordValues(Fwk::ConstObjectRef record);

/// The record as an object whose collections are lists, in order.
Json recordJson(Fwk::ConstObjectRef record);

/// The record for people, one line per value.
std::string recordText(Fwk::ConstObjectRef record);

/// A value that differs between two records; null: missing in that record.
struct RecordChange {
  std::string path;
  Json before;
  Json after;
};

/// The changes between two records of one type: in the order of the later one, then values that are gone.
std::vector<RecordChange> recordChanges(std::vector<RecordValue> const& before, std::vector<RecordValue> const& after);

/// The changes for people, one per line.
std::string changesText(std::vector<RecordChange> const& changes);

/// The changes as an object from path to `[before, after]`.
Json changesJson(std::vector<RecordChange> const& changes);

}  // namespace Tool
