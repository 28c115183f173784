#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Text.h>
#include <RouterPlatform/Fwk/AttrId.h>

#include <typeinfo>

namespace Fwk {

class Entity;

/// The change of a collection's member. An added member comes last; a replaced one keeps its place.
enum class MemberChange : U8 { unspecified, added, replaced, removed };

/// The key of a collection's change. Refers to the mutator's key: valid during the notification.
class NotificationKey {
 public:
  constexpr NotificationKey() noexcept = default;

  template <class K>
  static NotificationKey of(K const& key, MemberChange change = MemberChange::unspecified) noexcept {
    NotificationKey result;
    result.change_ = change;
    result.key_ = &key;
    result.type_ = &typeid(K);
    result.append_ = [](std::string& out, void const* k) {
      using Trace::appendText;
      appendText(out, *static_cast<K const*>(k));
    };
    return result;
  }

  /// The key when there is one and it is a `K`, otherwise null.
  template <class K>
  K const* as() const noexcept {
    return type_ && *type_ == typeid(K) ? static_cast<K const*>(key_) : nullptr;
  }

  explicit operator bool() const noexcept { return key_ != nullptr; }

  /// The mutator's change. An observer that was called earlier may have changed the member again since.
  MemberChange change() const noexcept { return change_; }

  /// Plain text of the key; nothing when there is none.
  void appendTo(std::string& out) const {
    if (key_) append_(out, key_);
  }

 private:
  void const* key_ = nullptr;
  std::type_info const* type_ = nullptr;
  void (*append_)(std::string&, void const*) = nullptr;
  MemberChange change_ = MemberChange::unspecified;
};

/// One change of one attribute of one entity, after the new state is stored.
struct Notification {
  Entity& entity;
  AttrId attr;
  NotificationKey key;  ///< set for collections only
};

}  // namespace Fwk
