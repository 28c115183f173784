#pragma once

#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Fwk/Notification.h>

namespace Fwk {

class NotifieeList;

/// An observer of one entity. Held by `Ptr`; registered on the entity's `notifieeList()`, which does not own it; leaves
/// the list by itself when it ends. Called only while its own notification is active (it starts inactive). `observe`
/// makes one of a function.
/// Thread rule: like the entity it observes.
class ROUTER_PLATFORM_EXPORT Notifiee : public PtrInterface<Notifiee> {
 public:
  /// A change of the observed entity. The observer may change, empty or drop that entity, may leave the list, and may
  /// drop itself. An exception reaches the caller of the mutator; the observers behind this one are not called.
  virtual void handleNotification(Notification const& notification) = 0;

  /// The last outside reference to the observed entity is about to go. It still counts, so a reference taken here keeps
  /// the entity alive. Must not throw.
  virtual void handleZeroReferences(Entity& entity);

  bool hasNotificationActive() const noexcept { return active_; }
  void hasNotificationActiveIs(bool active) noexcept { active_ = active; }

  /// Whether it stands in an entity's list.
  bool registered() const noexcept { return list_ != nullptr; }

  /// Leaves its list, if any: it is not called again.
  void unregister() noexcept;

 protected:
  virtual ~Notifiee();

 private:
  friend class NotifieeList;
  friend class PtrInterface<Notifiee>;
  void onZeroReferences() noexcept;

  NotifieeList* list_ = nullptr;
  Notifiee* previous_ = nullptr;
  Notifiee* next_ = nullptr;
  bool active_ = false;
};

/// The observers of one entity, in the order in which they registered. Not owning.
///
/// A notification reaches the observers that stood in the list when it began and still stand there when their turn
/// comes. Notifications nest: an observer may cause another one on the same list.
class ROUTER_PLATFORM_EXPORT NotifieeList {
 public:
  NotifieeList() = default;
  NotifieeList(NotifieeList const&) = delete;
  NotifieeList& operator=(NotifieeList const&) = delete;
  ~NotifieeList() { clear(); }

  bool empty() const noexcept { return first_ == nullptr; }

  /// Appends `notifiee`, which leaves the list it stood in before.
  void add(Notifiee& notifiee) noexcept;
  /// Takes `notifiee` out, if it stands here.
  void remove(Notifiee& notifiee) noexcept;
  void clear() noexcept;

  /// Calls each observer with the change. The caller keeps the list alive.
  void notify(Notification const& notification);
  /// Tells each observer that the last outside reference to `entity` is going.
  void notifyZeroReferences(Entity& entity);

 private:
  struct Walk;
  template <class Call>
  void forEachActive(Call call);

  Notifiee* first_ = nullptr;
  Notifiee* last_ = nullptr;
  Walk* walks_ = nullptr;  ///< notifications in progress, innermost first
};

}  // namespace Fwk
