#pragma once

#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/Fwk/Notifiee.h>

#include <type_traits>
#include <utility>

namespace Fwk {

/// Keeps an observer on its entity; going out of scope ends the observation. May outlive the entity.
class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(Ptr<Notifiee> notifiee) noexcept : notifiee_(std::move(notifiee)) {}
  Subscription(Subscription&&) noexcept = default;
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      cancel();
      notifiee_ = std::move(other.notifiee_);
    }
    return *this;
  }
  ~Subscription() { cancel(); }

  /// Ends the observation now: the observer is not called again, not even by a notification in progress.
  void cancel() noexcept {
    if (!notifiee_) return;
    notifiee_->unregister();
    notifiee_ = nullptr;
  }

  /// Whether the observed entity still exists and is observed.
  bool active() const noexcept { return notifiee_ && notifiee_->registered(); }

 private:
  Ptr<Notifiee> notifiee_;
};

/// Calls `function(Notification const&)` for each change of `entity`, from the next change on, for as long as the
/// returned subscription lives. Allocates here, never when notifying.
///
/// A collection notifies of a new member before the member is filled: the function marks, and the program acts when the
/// setter has returned. `TreeObserver` does both for a whole tree.
template <class Function>
[[nodiscard]] Subscription observe(Entity& entity, Function&& function) {
  struct FunctionNotifiee final : Notifiee {
    explicit FunctionNotifiee(Function&& f) : function(std::forward<Function>(f)) {}
    void handleNotification(Notification const& notification) override { function(notification); }
    std::decay_t<Function> function;
  };
  Ptr<Notifiee> notifiee(new FunctionNotifiee(std::forward<Function>(function)));
  notifiee->hasNotificationActiveIs(true);
  entity.notifieeList().add(*notifiee);
  return Subscription(std::move(notifiee));
}

/// The same through a counted pointer, which must not be null.
template <class T, class Function>
[[nodiscard]] Subscription observe(Ptr<T> const& entity, Function&& function) {
  return observe(static_cast<Entity&>(*entity), std::forward<Function>(function));
}

}  // namespace Fwk
