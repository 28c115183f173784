#pragma once

#include <RouterPlatform/Base/Ptr.h>

#include <mutex>

namespace Net {

/// Locks `mutex` when counted pointers may be shared by threads; otherwise one thread uses them, and no lock is taken.
inline std::unique_lock<std::mutex> lockIfThreaded(std::mutex& mutex) {
  return Fwk::threadSafePtrMode() ? std::unique_lock(mutex) : std::unique_lock(mutex, std::defer_lock);
}

}  // namespace Net
