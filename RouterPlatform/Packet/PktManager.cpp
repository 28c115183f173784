#include <RouterPlatform/Packet/PktManager.h>

#include <RouterPlatform/Packet/LockIfThreaded.h>
#include <RouterPlatform/Trace/Assert.h>

#include <new>

namespace Net {

PktManager::~PktManager() { ASSERT_AT(pktCount_ == 0, Trace::Location::here()); }

Fwk::Ptr<Pkt> PktManager::newPkt() noexcept {
  Pkt* pkt = nullptr;
  {
    auto const lock = lockIfThreaded(mutex_);
    if (pktCount_ >= pktLimit_) return nullptr;
    ++pktCount_;
    pkt = free_.take();
  }
  if (pkt)
    pkt->reset();
  else if (pkt = allocatePkt(); !pkt) {
    auto const lock = lockIfThreaded(mutex_);
    --pktCount_;
  }
  return pkt;
}

Pkt* PktManager::allocatePkt() noexcept {
  std::unique_ptr<U8[]> buffer(new (std::nothrow) U8[newPktCapacity]);
  return buffer ? new (std::nothrow) Pkt(*this, std::move(buffer), newPktCapacity) : nullptr;
}

void PktManager::recycle(Pkt* pkt) noexcept {
  bool kept = false;
  {
    auto const lock = lockIfThreaded(mutex_);
    --pktCount_;
    kept = pkt->capacity_ <= keptCapacityMax && free_.put(pkt);
  }
  if (!kept) delete pkt;
}

U64 PktManager::pktLimit() const {
  auto const lock = lockIfThreaded(mutex_);
  return pktLimit_;
}

void PktManager::pktLimitIs(U64 limit) {
  auto const lock = lockIfThreaded(mutex_);
  pktLimit_ = limit;
}

U64 PktManager::pktCount() const {
  auto const lock = lockIfThreaded(mutex_);
  return pktCount_;
}

PktManager& globalPktManager() {
  static PktManager& manager = *new PktManager;
  return manager;
}

}  // namespace Net
