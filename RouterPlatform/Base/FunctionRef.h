#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace Fwk {

template <class Signature>
class FunctionRef;

/// A callable that is passed down and called before the call returns: two words, no allocation, owns nothing.
template <class Result, class... Args>
class FunctionRef<Result(Args...)> {
 public:
  template <class Callable>
  requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef> &&
           std::is_invocable_r_v<Result, Callable&, Args...>) FunctionRef(Callable&& callable)
  noexcept  // NOLINT(google-explicit-constructor)
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
