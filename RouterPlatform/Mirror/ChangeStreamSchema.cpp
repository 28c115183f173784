#include <RouterPlatform/Base/Hash.h>
#include <RouterPlatform/Fwk/TypeRegistry.h>
#include <RouterPlatform/Mirror/ChangeStreamSchema.h>

#include <algorithm>

namespace Fwk::ChangeStream::detail {

namespace {

/// Kind of an attribute in a stream. The numbers are part of the format.
enum class StreamKind : U8 { none, key, scalar, entities, values, set, child };

StreamKind streamKind(TypeRecord const& type, AttributeRecord const& attr) {
  if (!attr.reflected) return StreamKind::none;
  if (attr.kind == AttributeKind::key) return StreamKind::key;
  if (type.kind == TypeKind::entity && !attr.streamed()) return StreamKind::none;
  if (attr.child) return StreamKind::child;
  if (CollectionRecord const* const collection = attr.collection) {
    if (collection->stream && collection->stream->ofEntities) return StreamKind::entities;
    return collection->memberTypeName[0] ? StreamKind::values : StreamKind::set;
  }
  return attr.kind == AttributeKind::scalar ? StreamKind::scalar : StreamKind::none;
}

char const* keyTypeName(AttributeRecord const& attr) { return attr.collection ? attr.collection->keyTypeName : ""; }

/// The record type of the attribute's values or members; null when they are plain.
TypeRecord const* typeInside(AttributeRecord const& attr) {
  if (attr.child) return &attr.child->type();
  if (attr.collection) return attr.collection->memberType ? &attr.collection->memberType() : nullptr;
  return attr.recordType ? &attr.recordType() : nullptr;
}

void putText(OctetSink& out, std::string_view text) {
  out.number(text.size());
  out.text(text);
}

void putType(OctetSink& out, TypeRecord const& type) {
  out.block([&] {
    putText(out, type.name);
    for (std::size_t place = 0; place < type.attributes.size(); ++place) {
      AttributeRecord const& attr = type.attributes[place];
      StreamKind const kind = streamKind(type, attr);
      if (kind == StreamKind::none) continue;
      out.block([&] {
        out.number(place);
        putText(out, attr.name);
        out.octet(static_cast<U8>(kind));
        putText(out, attr.typeName);
        putText(out, keyTypeName(attr));
      });
    }
  });
}

/// An attribute as the other side describes it.
struct ForeignAttribute {
  U64 place = 0;
  std::string_view name;
  U8 kind = 0;
  std::string_view typeName;
  std::string_view keyTypeName;

  /// Octets behind these are of a later version.
  bool take(OctetSource in) {
    OctetSource nameIn;
    OctetSource typeIn;
    OctetSource keyTypeIn;
    if (!in.number(place) || !in.block(nameIn) || !in.octet(kind) || !in.block(typeIn) || !in.block(keyTypeIn))
      return false;
    name = nameIn.restAsText();
    typeName = typeIn.restAsText();
    keyTypeName = keyTypeIn.restAsText();
    return true;
  }
};

/// Whether the attribute is the same in `type`, or unknown to it, or streamed by one side only.
bool agrees(TypeRecord const& type, ForeignAttribute const& theirs) {
  if (theirs.place >= type.attributes.size()) return true;
  AttributeRecord const& ours = type.attributes[static_cast<std::size_t>(theirs.place)];
  StreamKind const kind = streamKind(type, ours);
  if (kind == StreamKind::none) return true;
  return theirs.name == ours.name && theirs.kind == static_cast<U8>(kind) && theirs.typeName == ours.typeName &&
         theirs.keyTypeName == keyTypeName(ours);
}

SchemaMatch compareType(Schema const& ours, OctetSource theirs, String& difference) {
  OctetSource name;
  if (!theirs.block(name)) return SchemaMatch::malformed;
  TypeRecord const* const type = ours.find(name.restAsText());
  while (!theirs.atEnd()) {
    OctetSource content;
    ForeignAttribute attribute;
    if (!theirs.block(content) || !attribute.take(content)) return SchemaMatch::malformed;
    if (!type || agrees(*type, attribute)) continue;
    difference = type->name;
    difference += "::";
    difference += type->attributes[static_cast<std::size_t>(attribute.place)].name;
    return SchemaMatch::different;
  }
  return SchemaMatch::compatible;
}

}  // namespace

Schema::Schema(std::span<TypeRecord const* const> roots) {
  for (TypeRecord const* const root : roots) add(*root);
  OctetSink out(octets_);
  for (TypeRecord const* const type : types_) putType(out, *type);
}

void Schema::add(TypeRecord const& type) {
  if (std::ranges::find(types_, &type) != types_.end()) return;
  types_.push_back(&type);
  for (AttributeRecord const& attr : type.attributes)
    if (streamKind(type, attr) != StreamKind::none)
      if (TypeRecord const* const inside = typeInside(attr)) add(*inside);
}

U64 Schema::hash() const noexcept { return hashBytes(octets_.data(), octets_.size(), 0); }

TypeRecord const* Schema::find(std::string_view name) const noexcept {
  auto const found = std::ranges::find_if(types_, [&](TypeRecord const* type) { return type->name == name; });
  return found != types_.end() ? *found : typeRegistry().find(name);
}

SchemaMatch compareSchema(Schema const& ours, OctetSource theirs, String& difference) {
  while (!theirs.atEnd()) {
    OctetSource type;
    if (!theirs.block(type)) return SchemaMatch::malformed;
    SchemaMatch const match = compareType(ours, type, difference);
    if (match != SchemaMatch::compatible) return match;
  }
  return SchemaMatch::compatible;
}

}  // namespace Fwk::ChangeStream::detail
