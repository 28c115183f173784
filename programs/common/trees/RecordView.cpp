#include <programs/common/text/Text.h>
#include <programs/common/trees/RecordView.h>

#include <algorithm>
#include <unordered_map>

namespace Tool {

namespace {

/// A member as a list shows it: a value record by its attributes, another value by its text.
Json listedJson(Fwk::MemberRef const& member) {
  if (member.value.object) return recordJson(member.value);
  return member.text.empty() ? Json(member.key) : Json(member.text);
}

void appendValues(std::vector<RecordValue>& values, std::string const& prefix, Fwk::ConstObjectRef record) {
  Json const json = toJson(record);
  for (Fwk::AttributeRecord const& attr : record.type->attributes) {
    if (!json.contains(attr.name)) continue;
    if (!attr.collection) {
      values.push_back({prefix + attr.name, json[attr.name]});
      continue;
    }
    attr.collection->forEach(record.object, [&](Fwk::MemberRef const& member) {
      std::string const path = prefix + attr.name + '[' + member.key + ']';
      if (member.value.object)
        appendValues(values, path + '/', member.value);
      else
        values.push_back({path, member.text});
      return true;
    });
  }
}

std::string valueText(Json const& value) {
  if (value.is_null()) return "absent";
  return printable(value.is_string() ? value.get<std::string>() : jsonText(value));
}

template <class Items>
std::size_t pathWidth(Items const& items) {
  std::size_t width = 0;
  for (auto const& item : items) width = std::max(width, displayWidth(printable(item.path)));
  return width;
}

}  // namespace

std::vector<RecordValue> recordValues(Fwk::ConstObjectRef record) {
  std::vector<RecordValue> values;
  appendValues(values, {}, record);
  return values;
}

Json recordJson(Fwk::ConstObjectRef record) {
  Json result = toJson(record);
  for (Fwk::AttributeRecord const& attr : record.type->attributes) {
    if (!attr.collection || !result.contains(attr.name)) continue;
    Json list = Json::array();
    attr.collection->forEach(record.object, [&](Fwk::MemberRef const& member) {
      list.push_back(listedJson(member));
      return true;
    });
    result[attr.name] = std::move(list);
  }
  return result;
}

std::string recordText(Fwk::ConstObjectRef record) {
  std::vector<RecordValue> const values = recordValues(record);
  std::size_t const width = pathWidth(values);
  std::string text;
  for (RecordValue const& value : values)
    text += "  " + padded(printable(value.path), width) + "  " + valueText(value.value) + '\n';
  return text;
}

std::vector<RecordChange> recordChanges(std::vector<RecordValue> const& before, std::vector<RecordValue> const& after) {
  std::unordered_map<std::string_view, Json const*> left;
  for (RecordValue const& value : before) left.emplace(value.path, &value.value);
  std::vector<RecordChange> changes;
  for (RecordValue const& value : after) {
    auto const found = left.find(value.path);
    if (found == left.end()) {
      changes.push_back({value.path, nullptr, value.value});
      continue;
    }
    if (*found->second != value.value) changes.push_back({value.path, *found->second, value.value});
    left.erase(found);
  }
  for (RecordValue const& value : before)
    if (left.contains(value.path)) changes.push_back({value.path, value.value, nullptr});
  return changes;
}

std::string changesText(std::vector<RecordChange> const& changes) {
  std::size_t const width = pathWidth(changes);
  std::string text;
  for (RecordChange const& change : changes)
    text += "  " + padded(printable(change.path), width) + "  " + valueText(change.before) + " -> " +
            valueText(change.after) + '\n';
  return text;
}

Json changesJson(std::vector<RecordChange> const& changes) {
  Json result = Json::object();
  for (RecordChange const& change : changes) result[change.path] = Json::array({change.before, change.after});
  return result;
}

}  // namespace Tool
