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
/// Made by `create`, held by `Ptr`, ends with the last `Ptr`. `new` does not compile outside the class and its
/// descendants. An entity in storage of another kind, such as a local variable, is not counted, does not notify, and
/// ends with that storage. One thread uses an entity and all that hangs below it.
class ROUTER_PLATFORM_EXPORT Entity : public PtrInterface<Entity> {
 public:
  // The order of the virtual operations is part of the binary interface. handleNameRestore() to handleRestore() are
  // hooks; the defaults do nothing.

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
  /// The name that the entity was constructed from; empty for a type that is identified by another key.
  virtual Name name() const;
  /// The parent has changed to `parent`, which is null when the entity was removed. Must not end the parent: a
  /// mutator of the parent is running.
  virtual void handleParent(Ptr<Entity> parent);
  /// The entity is about to be written to a backup.
  virtual void handleBackup();
  /// The entity was read from a backup.
  virtual void handleRestore();

  /// Path of attribute names and keys from the root: `ra/intf[Ethernet1]/prefixes[2001:db8::/64]`. In a key between
  /// brackets, `]` and `\` are preceded by `\`.
  String fullName() const;
  /// The entity whose collection or child attribute holds this one, or which `parentIs` named; null without a parent,
  /// and while the parent ends. Never kept alive by this link.
  Ptr<Entity> parent() const noexcept;
  /// Name of the parent's attribute that holds this entity; empty without a parent.
  String parentAttrName() const;
  /// This entity as its base type.
  Ptr<Entity const> entity() const noexcept { return Ptr<Entity const>(this); }

  bool hasNotificationActive() const noexcept { return notificationActive_; }

  /// Plain text of the key: the key attribute where the type has one, else the name.
  String keyText() const;

  /// Places an entity that no collection or child attribute holds below `parent`; null takes it out. `parent` does not
  /// hold it; when `parent` ends, the entity has no parent any more. `attr` is the attribute of `parent` that
  /// `parentAttrName` names, 0 for none. Fires `handleParent` when the parent changes. To call it for an entity that a
  /// collection or child attribute holds is a programming error, which stops the process.
  void parentIs(Entity* parent, AttrId attr);

 protected:
  Entity() = default;

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void operator delete(void* storage) noexcept { ::operator delete(storage); }

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
  template <class T, class... Args>
  friend Ptr<T> create(Args&&... args);
  template <class K, class T>
  friend class EntityCollection;
  template <class T>
  friend class OwnedChild;

  void isMade() {
    fwkType().liveCount->add();
    made_ = true;
  }
  void onZeroReferences() noexcept;
  void notifyObservers(AttrId attr, NotificationKey const& key);

  /// Sets or clears the parent link, for the attribute that holds the entity. Fires `handleParent`.
  void linkIs(Entity* parent, AttrId attr);
  /// The parent ends: clears the link and fires `handleParent`. What that throws is dropped.
  void loseParent() noexcept;
  void leavePlace() noexcept;

  bool notificationActive_ = false;
  bool made_ : 1 = false;    ///< by `create`
  bool placed_ : 1 = false;  ///< by `parentIs`: stands in the parent's list
  AttrId parentAttr_ = 0;
  Entity* parent_ = nullptr;
  Entity* firstPlaced_ = nullptr;  ///< entities that `parentIs` placed below this one
  Entity* nextPlaced_ = nullptr;   ///< the next one in the parent's list
  NotifieeList notifiees_;
};

/// Makes an entity and counts it as a living instance of its type. When the constructor throws, the storage is released
/// and nothing is counted. Throws what the constructor throws, and std::bad_alloc. The result is the only `Ptr`;
/// notification is active.
template <class T, class... Args>
Ptr<T> create(Args&&... args) {
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
  Ptr<T> entity(new T(std::forward<Args>(args)...));
  static_cast<Entity&>(*entity).isMade();
  entity->hasNotificationActiveIs(true);
  return entity;
}

}  // namespace Fwk
