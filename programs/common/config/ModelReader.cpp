#include <RouterPlatform/Fwk/Reflection.h>
#include <programs/common/config/ModelReader.h>
#include <programs/common/text/NearestName.h>
#include <programs/common/text/Text.h>
#include <programs/common/text/ValueTypes.h>

#include <algorithm>

namespace Tool {

namespace {

using Fwk::AttributeRecord;
using Fwk::Entity;
using Fwk::Ptr;
using Fwk::TypeRecord;

bool isMapping(AttributeRecord const& attr) { return attr.collection && attr.collection->set; }

std::vector<std::string_view> configurableNames(TypeRecord const& type) {
  std::vector<std::string_view> names;
  for (AttributeRecord const& attr : type.attributes)
    if (attr.settable() || isMapping(attr)) names.emplace_back(attr.name);
  return names;
}

/// About a name that is not configurable.
std::string whyNoAttribute(TypeRecord const& type, std::string_view name) {
  // An attribute may have a number and not be reached by reflection.
  if (std::ranges::find(type.attributes, name, &AttributeRecord::name) != type.attributes.end()) return "cannot be set";
  return "there is no such attribute" + nearestNameHint(name, configurableNames(type));
}

std::string whyNotConfigurable(AttributeRecord const& attr) {
  switch (attr.kind) {
    case Fwk::AttributeKind::key:
      return "is the key of the mapping, and cannot be set here";
    case Fwk::AttributeKind::constant:
      return "is a constant of the model, and cannot be set";
    case Fwk::AttributeKind::computed:
      return "is computed from other attributes, and cannot be set";
    default:
      return "cannot be set";
  }
}

class EntityReader {
 public:
  EntityReader(YamlReader& reader, Ptr<Entity> const& entity)
      : reader_(reader), entity_(entity), type_(entity->fwkType()), path_(entity->fullName()) {}

  void read(YamlValue const& value) {
    reader_.forEachEntry(value, "a mapping with attributes such as " + std::string(configurableNames(type_).front()),
                         [&](YamlEntry const& entry) { readAttribute(entry); });
    for (auto const& [attr, place] : given_) warnUnlessConfigured(*attr, place);
  }

 private:
  void readAttribute(YamlEntry const& entry) {
    std::string const path = path_ + '/' + entry.key;
    AttributeRecord const* const attr = type_.attribute(entry.key);
    if (!attr) return reader_.error(entry.keyPlace, path, whyNoAttribute(type_, entry.key));
    reader_.notePlace(path, entry.keyPlace);
    if (isMapping(*attr))
      readCollection(entry.value(path), *attr);
    else if (attr->settable())
      readScalar(entry.value(path), *attr);
    else
      reader_.error(entry.keyPlace, path, whyNotConfigurable(*attr));
  }

  void readScalar(YamlValue const& value, AttributeRecord const& attr) {
    auto const text = reader_.scalar(value, expectedText(attr.typeName));
    if (!text) return;
    if (std::string why = refusal(attr.typeName, *text); !why.empty())
      return reader_.error(value.place, value.path, std::move(why));
    if (auto const result = attr.set(entity_.get(), *text); !result)
      return reader_.error(value.place, value.path, badTextMessage(attr.typeName, *text, result));
    given_.emplace_back(&attr, value.place);
  }

  void readCollection(YamlValue const& value, AttributeRecord const& attr) {
    std::map<std::string, YamlEntry> members;
    reader_.forEachEntry(value, "a mapping with keys such as " + exampleText(attr.collection->keyTypeName),
                         [&](YamlEntry const& entry) { readMember(entry, attr, members); });
  }

  /// `members`: the entries read so far, by the key as the model prints it. Two texts may name the same member.
  void readMember(YamlEntry const& entry, AttributeRecord const& attr, std::map<std::string, YamlEntry>& members) {
    Fwk::CollectionView const collection({entity_.get(), &type_}, attr);
    std::string const memberPath = path_ + '/' + attr.name + '[' + entry.key + ']';
    if (std::string why = refusal(attr.collection->keyTypeName, entry.key); !why.empty())
      return reader_.error(entry.keyPlace, memberPath, std::move(why));
    bool const isEntity = attr.collection->memberType != nullptr;
    std::optional<std::string> const memberText =
        isEntity ? std::string() : reader_.scalar(entry.value(memberPath), expectedText(attr.typeName));
    if (!memberText) return;
    auto const sizeBefore = collection.size();
    if (auto const result = collection.set(entry.key, *memberText); !result)
      return reader_.error(entry.keyPlace, memberPath, badTextMessage(attr.collection->keyTypeName, entry.key, result));
    Fwk::MemberRef member;
    collection.get(entry.key, [&](Fwk::MemberRef const& found) { member = found; });
    if (auto const [first, isNew] = members.emplace(member.key, entry); !isNew || collection.size() == sizeBefore)
      return reader_.error(entry.keyPlace, path_ + '/' + attr.name,
                           "duplicate key " + inQuotes(entry.key) + ", which is the same as " +
                               inQuotes(first->second.key) + " in line " + std::to_string(first->second.keyPlace.line));
    std::string const path = path_ + '/' + attr.name + '[' + member.key + ']';
    reader_.notePlace(path, entry.keyPlace);
    if (member.entity) readEntity(reader_, entry.value(path), member.entity);
  }

  /// Some values count only while another attribute, `...Configured`, is true. The model never sets it by itself, so it
  /// is easily forgotten.
  void warnUnlessConfigured(AttributeRecord const& attr, Place place) {
    std::string const switchName = std::string(attr.name) + "Configured";
    AttributeRecord const* const configured = type_.attribute(switchName);
    if (!configured || configured->valueKind != Fwk::ValueKind::boolean) return;
    std::string text;
    configured->append(entity_.get(), text);
    if (text != "true")
      reader_.warning(place, path_ + '/' + attr.name, "has no effect without " + switchName + ": true");
  }

  YamlReader& reader_;
  Ptr<Entity> const& entity_;
  TypeRecord const& type_;
  std::string path_;
  std::vector<std::pair<AttributeRecord const*, Place>> given_;
};

}  // namespace

void readEntity(YamlReader& reader, YamlValue const& value, Ptr<Entity> const& entity) {
  EntityReader(reader, entity).read(value);
}

}  // namespace Tool
