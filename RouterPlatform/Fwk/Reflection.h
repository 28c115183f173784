#pragma once

#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/Attributes.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

/// Objects by attribute number or name, with plain text in and out. Wrong use is an outcome, never a crash: the result
/// says what is wrong. A setter reached this way notifies like any other.
namespace Fwk {

/// Appends the attribute's text to `out`.
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, AttrId attr, std::string& out);
ROUTER_PLATFORM_EXPORT ReflectionResult readAttribute(ConstObjectRef object, std::string_view attr, std::string& out);

/// Sets the attribute from `text`.
ROUTER_PLATFORM_EXPORT ReflectionResult setAttribute(ObjectRef object, AttrId attr, std::string_view text);
ROUTER_PLATFORM_EXPORT ReflectionResult setAttribute(ObjectRef object, std::string_view attr, std::string_view text);

/// One collection of one object. Made by `reflectCollection`; must not outlive the object.
class ROUTER_PLATFORM_EXPORT CollectionView {
 public:
  CollectionView(ObjectRef object, AttributeRecord const& attr) noexcept : object_(object), attr_(&attr) {}

  U64 size() const { return record().size(object_.object); }
  bool contains(std::string_view key) const;
  /// Hands the member to `visit`.
  ReflectionResult get(std::string_view key, FunctionRef<void(MemberRef const&)> visit) const {
    return record().get(object_.object, key, visit);
  }
  /// The member of a collection of entities, or null.
  Ptr<Entity> entity(std::string_view key) const;
  /// Makes the member, or stores the value where members are plain values.
  ReflectionResult set(std::string_view key, std::string_view value = {}) const;
  ReflectionResult del(std::string_view key) const;
  ReflectionResult delAll() const;
  /// Calls `visit` for each member, in order, until it returns false.
  void forEach(FunctionRef<bool(MemberRef const&)> visit) const { record().forEach(object_.object, visit); }

  CollectionRecord const& record() const noexcept { return *attr_->collection; }

 private:
  ObjectRef object_;
  AttributeRecord const* attr_;
};

/// Calls `use` with the collection attribute of that name.
ROUTER_PLATFORM_EXPORT ReflectionResult reflectCollection(ObjectRef object, std::string_view attr,
                                                          FunctionRef<void(CollectionView const&)> use);

}  // namespace Fwk
