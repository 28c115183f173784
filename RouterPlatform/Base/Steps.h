#pragma once

#include <exception>
#include <utility>

namespace Fwk {

/// Steps that all have to be taken, whatever one of them throws.
class Steps {
 public:
  template <class Step>
  void run(Step&& step) noexcept {
    try {
      step();
    } catch (...) {
      if (!first_) first_ = std::current_exception();
    }
  }

  /// Throws what the first of them threw, if any did.
  void finish() {
    if (first_) std::rethrow_exception(std::exchange(first_, nullptr));
  }

 private:
  std::exception_ptr first_;
};

}  // namespace Fwk
