#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Base/Name.h>
#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/AttrId.h>
#include <RouterPlatform/Fwk/Notifiee.h>
#include <RouterPlatform/Fwk/TypeRecord.h>

#include <utility>

namespace Fwk {

/// An object with identity, a parent, typed attributes and observers; base of every model entity.
///
/// Made by `create`, held by `Ptr`, ends with the last `Ptr`. One thread uses an entity and all that hangs below it.
class ROUTER_PLATFORM_EXPORT Entity : public PtrInterface<Entity> {
 public:
  // The order of the virtual operations is part of the binary interface. handleNameRestore to handleRestore do nothing
  // here: they are for types that keep something that must follow.

  /// Where observers register. An override returns this one's list: it is the one that is notified.
  virtual NotifieeList& notifieeList();
  /// Switches notification of observers on or off; on from creation.
  virtual void hasNotificationActiveIs(bool active);
  /// The last outside reference is going, which still counts: tells the observers, one of which may keep the entity.
  virtual void zeroReferencesIs(bool zero);
  /// The type's registered record.
  virtual TypeRecord const& fwkType() const = 0;

 protected:
  virtual ~Entity();

 public:
  /// The entity's name was restored from a backup.
  virtual void handleNameRestore(Name const& name);
  /// The name that it was constructed from; empty for a type that is identified by another key.
  virtual Name name() const;
  /// The parent has changed to `parent`, which is null when the entity was removed. Must not end the parent, inside a
  /// mutator of which this runs.
  virtual void handleParent(Ptr<Entity> parent);
  /// The entity is about to be written to a backup.
  virtual void handleBackup();
  /// The entity was read from a backup.
  virtual void handleRestore();

  /// Path of attribute names and keys from the root: `ra/intf[Ethernet1]/prefixes[2001:db8::/64]`.
  String fullName() const;
  /// The entity whose collection or child attribute holds this one, or null, also while that one ends. Never kept alive
  /// by this link.
  Ptr<Entity> parent() const noexcept;
  /// Name of the parent's attribute that holds this entity; empty without a parent.
  String parentAttrName() const;
  /// This entity as its base type.
  Ptr<Entity const> entity() const noexcept { return Ptr<Entity const>(this); }

  bool hasNotificationActive() const noexcept { return notificationActive_; }

  /// Plain text of the key: the key attribute where the type has one, else the name.
  String keyText() const;

  /// Sets or clears the parent link; for the attribute that holds the entity. Fires `handleParent`.
  void parentIs(Entity* parent, AttrId attr);

 protected:
  Entity() = default;

  /// The whole behaviour of a scalar setter: an equal value is ignored; another one is stored, then notified.
  template <class T, class V>
  void attrIs(T& stored, V&& value, AttrId attr) {
    if (stored == value) return;
    stored = std::forward<V>(value);
    notify(attr);
  }

 public:
  /// Tells the observers that `attr` has changed; with `key` when it is a collection. The entity is kept alive
  /// meanwhile. For setters and for the attributes' own machinery.
  void notify(AttrId attr, NotificationKey const& key = {}) {
    if (notificationActive_ && !notifiees_.empty()) notifyObservers(attr, key);
  }

 private:
  friend class PtrInterface<Entity>;
  void onZeroReferences() noexcept;
  void notifyObservers(AttrId attr, NotificationKey const& key);

  bool notificationActive_ = false;
  AttrId parentAttr_ = 0;
  Entity* parent_ = nullptr;
  NotifieeList notifiees_;
};

/// Makes an entity: the one way in which entities come to be. Counts it as a living instance of its type; when the
/// constructor throws, the storage is released and the count taken back before the exception leaves. Throws what the
/// constructor throws, and std::bad_alloc. The result is the only `Ptr`; notification is active.
template <class T, class... Args>
Ptr<T> create(Args&&... args) {
  LiveCount::Pending counted(*T::typeRecord().liveCount);
  Ptr<T> entity(new T(std::forward<Args>(args)...));
  counted.keep();
  entity->hasNotificationActiveIs(true);
  return entity;
}

}  // namespace Fwk
