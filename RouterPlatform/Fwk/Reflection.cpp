#include <RouterPlatform/Fwk/ReflectedText.h>
#include <RouterPlatform/Fwk/Reflection.h>

namespace Fwk {

namespace {

ReflectionResult failure(ReflectionError error, char const* what, TypeRecord const& type, std::string_view attr) {
  ReflectionResult result{error, String(what)};
  result.text += " ";
  result.text += type.name;
  result.text += "::";
  result.text += attr;
  return result;
}

ReflectionResult noSuchAttribute(TypeRecord const& type, AttrId attr) {
  return failure(ReflectionError::noSuchAttribute, "no attribute", type, std::to_string(attr));
}

ReflectionResult noSuchAttribute(TypeRecord const& type, std::string_view attr) {
  return failure(ReflectionError::noSuchAttribute, "no attribute", type, attr);
}

template <class Attr>
ReflectionResult read(ConstObjectRef object, Attr attr, std::string& out) {
  AttributeRecord const* const record = object.type->attribute(attr);
  if (!record) return noSuchAttribute(*object.type, attr);
  if (!record->readable())
    return failure(ReflectionError::notReadable, "not readable as text:", *object.type, record->name);
  record->append(object.object, out);
  return {};
}

template <class Attr>
ReflectionResult readFor(ConstObjectRef object, Attr attr, std::string_view argument, std::string& out) {
  AttributeRecord const* const record = object.type->attribute(attr);
  if (!record) return noSuchAttribute(*object.type, attr);
  if (!record->appendFor)
    return failure(ReflectionError::notReadable, "takes no argument:", *object.type, record->name);
  return record->appendFor(object.object, argument, out);
}

template <class Attr>
ReflectionResult refer(ConstObjectRef object, Attr attr, Ptr<Entity>& entity) {
  AttributeRecord const* const record = object.type->attribute(attr);
  if (!record) return noSuchAttribute(*object.type, attr);
  if (!record->refer) return failure(ReflectionError::notReadable, "not a reference:", *object.type, record->name);
  entity = record->refer(object.object);
  return {};
}

template <class Attr>
ReflectionResult assign(ObjectRef object, Attr attr, std::string_view text) {
  AttributeRecord const* const record = object.type->attribute(attr);
  if (!record) return noSuchAttribute(*object.type, attr);
  if (!record->settable()) return failure(ReflectionError::notSettable, "not settable:", *object.type, record->name);
  return record->set(object.object, text);
}

}  // namespace

ReflectionResult readAttribute(ConstObjectRef object, AttrId attr, std::string& out) { return read(object, attr, out); }
ReflectionResult readAttribute(ConstObjectRef object, std::string_view attr, std::string& out) {
  return read(object, attr, out);
}

ReflectionResult readAttribute(ConstObjectRef object, AttrId attr, std::string_view argument, std::string& out) {
  return readFor(object, attr, argument, out);
}
ReflectionResult readAttribute(ConstObjectRef object, std::string_view attr, std::string_view argument,
                               std::string& out) {
  return readFor(object, attr, argument, out);
}

ReflectionResult readReference(ConstObjectRef object, AttrId attr, Ptr<Entity>& entity) {
  return refer(object, attr, entity);
}
ReflectionResult readReference(ConstObjectRef object, std::string_view attr, Ptr<Entity>& entity) {
  return refer(object, attr, entity);
}

ReflectionResult setAttribute(ObjectRef object, AttrId attr, std::string_view text) {
  return assign(object, attr, text);
}
ReflectionResult setAttribute(ObjectRef object, std::string_view attr, std::string_view text) {
  return assign(object, attr, text);
}

bool CollectionView::contains(std::string_view key) const {
  return static_cast<bool>(get(key, [](MemberRef const&) {}));
}

Ptr<Entity> CollectionView::entity(std::string_view key) const {
  Ptr<Entity> result;
  get(key, [&](MemberRef const& member) { result = member.entity; });
  return result;
}

ReflectionResult CollectionView::set(std::string_view key, std::string_view value) const {
  if (!record().set) return failure(ReflectionError::notSettable, "not settable:", *object_.type, attr_->name);
  return record().set(object_.object, key, value);
}

ReflectionResult CollectionView::del(std::string_view key) const {
  if (!record().del) return failure(ReflectionError::notSettable, "not settable:", *object_.type, attr_->name);
  return record().del(object_.object, key);
}

ReflectionResult CollectionView::delAll() const {
  if (!record().delAll) return failure(ReflectionError::notSettable, "not settable:", *object_.type, attr_->name);
  record().delAll(object_.object);
  return {};
}

namespace {

template <class Attr>
ReflectionResult useCollection(ObjectRef object, Attr attr, FunctionRef<void(CollectionView const&)> use) {
  AttributeRecord const* const record = object.type->attribute(attr);
  if (!record) return noSuchAttribute(*object.type, attr);
  if (!record->collection)
    return failure(ReflectionError::notACollection, "not a collection:", *object.type, record->name);
  use(CollectionView(object, *record));
  return {};
}

/// Calls `use` with the child attribute.
template <class Attr, class Use>
ReflectionResult useChild(TypeRecord const& type, Attr attr, Use use) {
  AttributeRecord const* const record = type.attribute(attr);
  if (!record) return noSuchAttribute(type, attr);
  if (!record->child) return failure(ReflectionError::notAChild, "not a child:", type, record->name);
  return use(*record);
}

template <class Attr>
ReflectionResult read(ConstObjectRef object, Attr attr, Ptr<Entity>& child) {
  return useChild(*object.type, attr, [&](AttributeRecord const& record) {
    child = record.child->get(object.object);
    return ReflectionResult{};
  });
}

template <class Attr>
ReflectionResult set(ObjectRef object, Attr attr, std::string_view name, Ptr<Entity>& child) {
  return useChild(*object.type, attr, [&](AttributeRecord const& record) {
    child = record.child->set(object.object, name);
    return child ? ReflectionResult{} : detail::badText(TextStatus::malformed, Name::textTypeName, name);
  });
}

template <class Attr>
ReflectionResult del(ObjectRef object, Attr attr) {
  return useChild(*object.type, attr, [&](AttributeRecord const& record) {
    return record.child->del(object.object)
               ? ReflectionResult{}
               : failure(ReflectionError::noSuchMember, "empty:", *object.type, record.name);
  });
}

}  // namespace

ReflectionResult reflectCollection(ObjectRef object, AttrId attr, FunctionRef<void(CollectionView const&)> use) {
  return useCollection(object, attr, use);
}
ReflectionResult reflectCollection(ObjectRef object, std::string_view attr,
                                   FunctionRef<void(CollectionView const&)> use) {
  return useCollection(object, attr, use);
}

ReflectionResult readChild(ConstObjectRef object, AttrId attr, Ptr<Entity>& child) { return read(object, attr, child); }
ReflectionResult readChild(ConstObjectRef object, std::string_view attr, Ptr<Entity>& child) {
  return read(object, attr, child);
}

ReflectionResult setChild(ObjectRef object, AttrId attr, std::string_view name, Ptr<Entity>& child) {
  return set(object, attr, name, child);
}
ReflectionResult setChild(ObjectRef object, std::string_view attr, std::string_view name, Ptr<Entity>& child) {
  return set(object, attr, name, child);
}

ReflectionResult deleteChild(ObjectRef object, AttrId attr) { return del(object, attr); }
ReflectionResult deleteChild(ObjectRef object, std::string_view attr) { return del(object, attr); }

}  // namespace Fwk
