#pragma once

#include <programs/common/trees/ReflectedJson.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// Records as their types describe them: what attributes there are is asked of the type record alone.
namespace Tool {

/// One value somewhere in a record.
struct RecordValue {
  std::string path;  ///< an attribute's name, or such as `prefixInfo[2001:db8::/64]/validLifetime`
  Json value;
};

/// Every value of a record, in order, those of its collections' members included.
std::vector<RecordValue> recordValues(Fwk::ConstObjectRef record);

/// The record as an object whose collections are lists, in order.
Json recordJson(Fwk::ConstObjectRef record);

/// The record for people, a line a value.
std::string recordText(Fwk::ConstObjectRef record);

/// A value that is not in both of two records, or not the same; null: not there.
struct RecordChange {
  std::string path;
  Json before;
  Json after;
};

/// What has changed between two records of one type: in the order of the later one, then what is gone.
std::vector<RecordChange> recordChanges(std::vector<RecordValue> const& before, std::vector<RecordValue> const& after);

/// The changes for people, a line each.
std::string changesText(std::vector<RecordChange> const& changes);

/// The changes as an object from path to `[before, after]`.
Json changesJson(std::vector<RecordChange> const& changes);

}  // namespace Tool
