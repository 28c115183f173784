#pragma once

#include <exception>
#include <utility>

namespace Fwk {

/// Runs every step even if one of them throws.
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

  /// Rethrows the first exception, if there was one.
  void finish() {
    if (first_) std::rethrow_exception(std::exchange(first_, nullptr));
  }

 private:
  std::exception_ptr first_;
};

}  // namespace Fwk
