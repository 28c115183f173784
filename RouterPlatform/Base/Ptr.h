#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Export.h>

#include <atomic>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace Fwk {

namespace detail {
/// Written by `threadSafePtrModeIs` only. One for the process: it is defined in the platform library.
ROUTER_PLATFORM_EXPORT extern std::atomic<bool> threadSafePtrModeFlag;
}  // namespace detail

/// Whether reference counts are updated with atomic read-modify-write operations (on) or with plain loads and stores
/// (off, the start value). Process-wide (docs/adr/0016). Switch before a second thread touches a counted object, never
/// back while one may.
ROUTER_PLATFORM_EXPORT void threadSafePtrModeIs(bool on) noexcept;
inline bool threadSafePtrMode() noexcept {
  // Relaxed and without a partner: set before a second thread starts.
  return detail::threadSafePtrModeFlag.load(std::memory_order_relaxed);
}

/// Intrusive reference count of `T`, which derives from `PtrInterface<T>` and has `void onZeroReferences() noexcept`.
///
/// The last reference to go calls `onZeroReferences` while the count still stands at one, so the object may be used and
/// even referenced anew there; the object then calls `releaseLastReference` and ends if that returns true.
template <class T>
class PtrInterface {
 public:
  PtrInterface() = default;
  PtrInterface(PtrInterface const&) = delete;
  PtrInterface& operator=(PtrInterface const&) = delete;

  void newRef() const noexcept {
    if (threadSafePtrMode())
      // Relaxed and without a partner: whoever adds a reference holds one, or has just made the object.
      references_.fetch_add(1, std::memory_order_relaxed);
    else  // one thread has the object: no partner
      references_.store(references_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }

  void deleteRef() const noexcept {
    if (dropUnlessLast()) return;
    const_cast<T*>(static_cast<T const*>(this))->onZeroReferences();
  }

  /// Number of references now; for tests and diagnostics.
  U32 references() const noexcept { return references_.load(std::memory_order_relaxed); }  // a number: no partner

 protected:
  ~PtrInterface() = default;

  /// Gives up the reference under which `onZeroReferences` ran. True: it was still the last one, and the object must
  /// end.
  bool releaseLastReference() const noexcept {
    if (!threadSafePtrMode()) {  // one thread has the object: no partner
      U32 const left = references_.load(std::memory_order_relaxed) - 1;
      references_.store(left, std::memory_order_relaxed);
      return left == 0;
    }
    // Release pairs with the acquire of whichever thread sees the count at one: it ends the object after all our uses.
    return references_.fetch_sub(1, std::memory_order_acq_rel) == 1;
  }

 private:
  /// Takes one off the count unless it is the last one. Exactly one thread gets false for one end of life.
  bool dropUnlessLast() const noexcept {
    U32 count = references_.load(std::memory_order_relaxed);  // no partner: the exchange looks again
    if (!threadSafePtrMode()) {                               // one thread has the object: no partner
      if (count == 1) return false;
      references_.store(count - 1, std::memory_order_relaxed);
      return true;
    }
    while (count != 1)
      // Release pairs with the acquire load below, in the thread that finds the count at one.
      if (references_.compare_exchange_weak(count, count - 1, std::memory_order_release, std::memory_order_relaxed))
        return true;
    references_.load(std::memory_order_acquire);  // pairs with the release of every earlier drop
    return false;
  }

  mutable std::atomic<U32> references_{0};
};

/// A type whose objects a pointer to `T` may point to.
template <class U, class T>
concept PointsTo = std::is_convertible_v<U*, T*>;

/// Counted pointer to a `PtrInterface` object. `Ptr<T>` converts to `Ptr<T const>` and to pointers to bases.
/// One `Ptr` object is used by one thread at a time, like any value; different `Ptr`s to one object may be used by
/// different threads when the thread-safe mode is on.
template <class T>
class Ptr {
 public:
  using element_type = T;

  constexpr Ptr() noexcept = default;
  constexpr Ptr(std::nullptr_t) noexcept {}
  Ptr(T* object) noexcept : object_(object) { ref(); }
  Ptr(Ptr const& other) noexcept : object_(other.object_) { ref(); }
  Ptr(Ptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}

  template <PointsTo<T> U>
  Ptr(Ptr<U> const& other) noexcept : object_(other.get()) {
    ref();
  }
  template <PointsTo<T> U>
  Ptr(Ptr<U>&& other) noexcept : object_(other.release()) {}

  ~Ptr() {
    if (object_) object_->deleteRef();
  }

  Ptr& operator=(Ptr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  /// Gives the reference away without dropping it.
  T* release() noexcept { return std::exchange(object_, nullptr); }

  template <class U>
  bool operator==(Ptr<U> const& other) const noexcept {
    return object_ == other.get();
  }
  bool operator==(std::nullptr_t) const noexcept { return object_ == nullptr; }

 private:
  void ref() const noexcept {
    if (object_) object_->newRef();
  }

  T* object_ = nullptr;
};

/// `pointer` as a `Ptr<T>` when the object is a `T`, otherwise null.
template <class T, class U>
Ptr<T> ptrCast(Ptr<U> const& pointer) noexcept {
  return Ptr<T>(dynamic_cast<T*>(pointer.get()));
}

}  // namespace Fwk

/// @cond
template <class T>
struct std::hash<Fwk::Ptr<T>> {
  std::size_t operator()(Fwk::Ptr<T> const& p) const noexcept { return std::hash<T*>()(p.get()); }
};
/// @endcond
