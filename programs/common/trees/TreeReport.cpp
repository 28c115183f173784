#include <RouterPlatform/Fwk/ObjectRef.h>
#include <programs/common/text/Text.h>
#include <programs/common/trees/EntityPrinter.h>
#include <programs/common/trees/TreeReport.h>

#include <nlohmann/json.hpp>

namespace Tool {

namespace {

using Fwk::Entity;
using Fwk::Ptr;

Json addedJson(TreeChange const& change) {
  return change.attr->child ? childJson(*change.added) : toJson(Fwk::objectRef(*change.added));
}

/// The value that was set, of a scalar or of a member.
Json setJson(TreeChange const& change) {
  if (!change.attr->collection) return attributeJson(*change.attr, change.holder.get());
  Json result;
  findMember(*change.holder, *change.attr, change.key, [&](Fwk::MemberRef const& m) { result = memberJson(m); });
  return result;
}

std::string setText(TreeChange const& change) {
  if (!change.attr->collection) return " = " + attributeText(*change.attr, *change.holder);
  if (change.attr->collection->memberTypeName[0] == '\0') return " added";  // a set has keys only
  std::string result = " = ";
  findMember(*change.holder, *change.attr, change.key,
             [&](Fwk::MemberRef const& member) { result += memberText(*change.attr, member); });
  return result;
}

}  // namespace

std::string treesText(std::vector<Ptr<Entity>> const& roots) {
  std::string text;
  for (auto const& root : roots)
    if (root) text += (text.empty() ? "" : "\n") + entityText(*root);
  return text;
}

Json treesJson(std::vector<Ptr<Entity>> const& roots) {
  Json result = Json::object();
  for (auto const& root : roots)
    if (root) result[root->fullName()] = toJson(Fwk::objectRef(*root));
  return result;
}

std::string changeText(TreeChange const& change) {
  std::string const path = printable(change.path);
  switch (change.kind) {
    case TreeChange::Kind::set:
      return path + setText(change) + '\n';
    case TreeChange::Kind::added:
      return path + " added\n" + entityLines(*change.added);
    case TreeChange::Kind::removed:
      return path + " removed\n";
  }
  return {};
}

Json changeJson(TreeChange const& change) {
  switch (change.kind) {
    case TreeChange::Kind::set:
      return {{"event", "set"}, {"path", change.path}, {"value", setJson(change)}};
    case TreeChange::Kind::added:
      return {{"event", "added"}, {"path", change.path}, {"value", addedJson(change)}};
    case TreeChange::Kind::removed:
      return {{"event", "removed"}, {"path", change.path}};
  }
  return {};
}

}  // namespace Tool
