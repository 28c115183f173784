#include <RouterPlatform/Base/Ptr.h>

namespace Fwk {

std::atomic<bool> detail::threadSafePtrModeFlag{false};

void threadSafePtrModeIs(bool on) noexcept {
  // Relaxed and without a partner: the caller has one thread.
  detail::threadSafePtrModeFlag.store(on, std::memory_order_relaxed);
}

}  // namespace Fwk
