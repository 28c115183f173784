#pragma once

#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Packet/FreeList.h>
#include <RouterPlatform/Packet/Pkt.h>

#include <mutex>

namespace Net {

/// Makes packets and takes them back: in steady state neither allocates. Any thread may call it once the thread-safe
/// pointer mode is on; one mutex guards it then, and no atomic is used. It outlives its packets.
class ROUTER_PLATFORM_EXPORT PktManager {
 public:
  /// Size of a new packet's buffer, octets: a full Ethernet frame (1514) and room, half a page.
  static constexpr U64 newPktCapacity = 2048;
  /// Greatest buffer that is kept for the next packet, octets: jumbo frames (about 9000) recycle, larger
  /// ones are freed.
  static constexpr U64 keptCapacityMax = 16384;
  /// Greatest number of packets kept for later: at most 4 MiB at `keptCapacityMax`.
  static constexpr U64 keptPktsMax = 256;
  static constexpr U64 pktLimitDefault() { return 16384; }

  PktManager() noexcept : free_(keptPktsMax) {}
  ~PktManager();
  PktManager(PktManager const&) = delete;
  PktManager& operator=(PktManager const&) = delete;

  /// An empty packet; null when as many as the limit are in use, or when there is no memory.
  Fwk::Ptr<Pkt> newPkt() noexcept;

  /// Greatest number of packets in use at one time. A limit below the number in use ends no packet.
  U64 pktLimit() const;
  void pktLimitIs(U64 limit);

  /// Packets in use now.
  U64 pktCount() const;

 private:
  friend class Pkt;
  void recycle(Pkt* pkt) noexcept;
  Pkt* allocatePkt() noexcept;

  mutable std::mutex mutex_;  // guards what follows
  FreeList<Pkt> free_;
  U64 pktCount_ = 0;
  U64 pktLimit_ = pktLimitDefault();
};

/// The process's packet manager. It never ends.
ROUTER_PLATFORM_EXPORT PktManager& globalPktManager();

}  // namespace Net
