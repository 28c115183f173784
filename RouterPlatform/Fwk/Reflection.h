#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/AttrId.h>
#include <RouterPlatform/Fwk/ObjectRef.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

/// Objects by attribute number or name, with plain text in and out. Numbers, names and texts may be anything: the
/// result holds the error. A setter reached this way notifies like any other. A computed attribute has the
/// preconditions of its operation, which stops the process where they do not hold.
namespace Fwk {

/// Appends the attribute's text to `out`. Fails with `noSuchAttribute`, or `notReadable` for collections, children,
/// references, value records and attributes that take an argument; `out` is then as it was.
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, AttrId attr, std::string& out);
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, std::string_view attr, std::string& out);

/// Appends the text of a computed attribute for the argument that `argument` names. Fails with `noSuchAttribute`,
/// `notReadable` for an attribute that takes no argument, or `malformed` or `outOfRange` for the argument; `out` is
/// then as it was.
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, AttrId attr, std::string_view argument,
                                                      std::string& out);
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, std::string_view attr,
                                                      std::string_view argument, std::string& out);

/// The entity that the attribute refers to, into `entity`; null when there is none. Fails with `noSuchAttribute`, or
/// `notReadable` for an attribute that is no reference.
ROUTER_PLATFORM_EXPORT ReflectionResult readReference(ConstObjectRef object, AttrId attr, Ptr<Entity>& entity);
ROUTER_PLATFORM_EXPORT ReflectionResult readReference(ConstObjectRef object, std::string_view attr,
                                                      Ptr<Entity>& entity);

/// Sets the attribute from `text`. Fails with `noSuchAttribute`, `notSettable`, `malformed` or `outOfRange`; the
/// attribute is then as it was, and nobody is notified.
ROUTER_PLATFORM_EXPORT ReflectionResult setAttribute(ObjectRef object, AttrId attr, std::string_view text);
ROUTER_PLATFORM_EXPORT ReflectionResult setAttribute(ObjectRef object, std::string_view attr, std::string_view text);

/// One collection of one object. Made by `reflectCollection`; must not outlive the object.
class ROUTER_PLATFORM_EXPORT CollectionView {
 public:
  CollectionView(ObjectRef object, AttributeRecord const& attr) noexcept : object_(object), attr_(&attr) {}

  U64 size() const { return record().size(object_.object); }
  /// Whether there is a member of that key; false for a text that is not a key. Members are found and removed by every
  /// key that `forEach` shows, also by one that `set` refuses.
  bool contains(std::string_view key) const;
  /// Hands the member to `visit`. Fails with `noSuchMember`, or with the error of the key's text.
  ReflectionResult get(std::string_view key, FunctionRef<void(MemberRef const&)> visit) const {
    return record().get(object_.object, key, visit);
  }
  /// The member of a collection of entities, or null.
  Ptr<Entity> entity(std::string_view key) const;
  /// Makes the member, or stores the value where members are plain values. Fails with `notSettable` for a collection
  /// that cannot be changed from text, or with the error of the text of key or value.
  ReflectionResult set(std::string_view key, std::string_view value = {}) const;
  /// Removes the member. Fails with `noSuchMember`, `notSettable`, or with the error of the key's text.
  ReflectionResult del(std::string_view key) const;
  /// Removes every member. Fails with `notSettable`.
  ReflectionResult delAll() const;
  /// Calls `visit` for each member, in order, until it returns false.
  void forEach(FunctionRef<bool(MemberRef const&)> visit) const { record().forEach(object_.object, visit); }

  CollectionRecord const& record() const noexcept { return *attr_->collection; }

 private:
  ObjectRef object_;
  AttributeRecord const* attr_;
};

/// Calls `use` with the collection attribute. Fails with `noSuchAttribute` or `notACollection`.
ROUTER_PLATFORM_EXPORT ReflectionResult reflectCollection(ObjectRef object, AttrId attr,
                                                          FunctionRef<void(CollectionView const&)> use);
ROUTER_PLATFORM_EXPORT ReflectionResult reflectCollection(ObjectRef object, std::string_view attr,
                                                          FunctionRef<void(CollectionView const&)> use);

/// The single child that the attribute holds, into `child`; null when there is none. Fails with `noSuchAttribute` or
/// `notAChild`.
ROUTER_PLATFORM_EXPORT ReflectionResult readChild(ConstObjectRef object, AttrId attr, Ptr<Entity>& child);
ROUTER_PLATFORM_EXPORT ReflectionResult readChild(ConstObjectRef object, std::string_view attr, Ptr<Entity>& child);

/// Makes the child of that name, or keeps it, and gives it in `child`. Fails also with `malformed` for a text that is
/// no name.
ROUTER_PLATFORM_EXPORT ReflectionResult setChild(ObjectRef object, AttrId attr, std::string_view name,
                                                 Ptr<Entity>& child);
ROUTER_PLATFORM_EXPORT ReflectionResult setChild(ObjectRef object, std::string_view attr, std::string_view name,
                                                 Ptr<Entity>& child);

/// Empties the attribute. Fails also with `noSuchMember` when it was empty.
ROUTER_PLATFORM_EXPORT ReflectionResult deleteChild(ObjectRef object, AttrId attr);
ROUTER_PLATFORM_EXPORT ReflectionResult deleteChild(ObjectRef object, std::string_view attr);

}  // namespace Fwk
