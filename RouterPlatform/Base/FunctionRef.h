#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace Fwk {

template <class Signature>
class FunctionRef;

/// Something other than a `Self` that is called with `Args` and gives a `Result`.
template <class T, class Self, class Result, class... Args>
concept CallableFor = !std::is_same_v<std::remove_cvref_t<T>, Self> && std::is_invocable_r_v<Result, T&, Args...>;

/// A reference to a callable, for arguments that the callee calls before it returns: two words, no allocation.
template <class Result, class... Args>
class FunctionRef<Result(Args...)> {
 public:
  template <CallableFor<FunctionRef, Result, Args...> Callable>
  FunctionRef(Callable&& callable) noexcept
      : callable_(const_cast<void*>(static_cast<void const*>(std::addressof(callable)))),
        call_([](void* c, Args... args) -> Result {
          return (*static_cast<std::remove_reference_t<Callable>*>(c))(std::forward<Args>(args)...);
        }) {}

  Result operator()(Args... args) const { return call_(callable_, std::forward<Args>(args)...); }

 private:
  void* callable_;
  Result (*call_)(void*, Args...);
};

}  // namespace Fwk
