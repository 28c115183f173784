#pragma once

#include <RouterPlatform/Base/Ptr.h>
#include <RouterPlatform/Export.h>
#include <RouterPlatform/Net/Ip6Addr.h>
#include <RouterPlatform/Packet/PktManager.h>

#include <span>
#include <string>

namespace Net {

/// Descriptor of a received IPv6 packet that carries an ICMPv6 message: the packet, with its headers located, and what
/// the IPv6 header says. Immutable; its packet may be written to.
///
/// The functions that make one read untrusted octets: nothing outside them is read, whatever the lengths in them say.
/// The message is bounded by the IPv6 Payload Length, and that many octets must be there. Octets are copied into a
/// packet of the manager, those behind the IPv6 packet left out (Ethernet pads short frames to 60 octets). In steady
/// state nothing is allocated. Any thread may make and release descriptors once the thread-safe pointer mode is on.
class ROUTER_PLATFORM_EXPORT Ip6PktInfo final : public Fwk::PtrInterface<Ip6PktInfo> {
 public:
  /// Why octets give no descriptor.
  enum class Reason : U8 {
    none,             ///< they do
    truncated,        ///< fewer octets than the headers say
    notIp6,           ///< another protocol, or another version
    emptyPayload,     ///< IPv6 Payload Length 0: nothing, or a jumbogram (RFC 2675), which no link here carries
    fragment,         ///< a Fragment header, with which Neighbor Discovery messages are ignored, RFC 6980 5
    badExtension,     ///< an extension header passes the end of the packet
    segmentsLeft,     ///< a routing header says that the packet has not arrived yet, RFC 8200 4.4
    notIcmp6,         ///< another upper layer
    messageTooShort,  ///< no room for an ICMPv6 header
    messageTooLong,   ///< more than a packet holds, `Pkt::maxSize`
    noPacket,         ///< the packet manager had no packet to give
  };

  /// A descriptor, or why there is none.
  struct Result {
    Fwk::Ptr<Ip6PktInfo> info;  ///< null unless `reason` is `none`
    Reason reason = Reason::none;

    explicit operator bool() const noexcept { return static_cast<bool>(info); }
  };

  /// From an Ethernet frame without frame check sequence, with any number of 802.1Q tags (C-tags and S-tags).
  static Result fromEthernetFrame(std::span<U8 const> frame, PktManager& manager = globalPktManager());
  /// From a packet that begins with its IPv6 header. Hop-by-hop, destination and routing headers are passed over.
  static Result fromIp6Packet(std::span<U8 const> packet, PktManager& manager = globalPktManager());
  /// From an ICMPv6 message as a raw socket gives it, with what the socket says about its IPv6 header.
  static Result fromIcmp6Message(std::span<U8 const> message, Ip6Addr const& sourceAddr, Ip6Addr const& destAddr,
                                 U8 hopLimit, PktManager& manager = globalPktManager());

  /// From a packet in which the ICMPv6 message is already located, or to be taken for one of 0 octets.
  static Fwk::Ptr<Ip6PktInfo> make(Fwk::Ptr<Pkt> packet, Ip6Addr const& sourceAddr, Ip6Addr const& destAddr,
                                   U8 hopLimit);

  Fwk::Ptr<Pkt> const& packet() const noexcept { return packet_; }
  Ip6Addr const& sourceAddr() const noexcept { return sourceAddr_; }
  Ip6Addr const& destAddr() const noexcept { return destAddr_; }
  U8 hopLimit() const noexcept { return hopLimit_; }

 private:
  friend class Fwk::PtrInterface<Ip6PktInfo>;
  friend class FreeList<Ip6PktInfo>;
  struct Pool;

  Ip6PktInfo() = default;
  ~Ip6PktInfo() = default;
  void onZeroReferences() noexcept;

  Fwk::Ptr<Pkt> packet_;
  Ip6Addr sourceAddr_;
  Ip6Addr destAddr_;
  U8 hopLimit_ = 0;
  Ip6PktInfo* nextFree_ = nullptr;
};

/// The reason in words, such as `not ICMPv6`.
ROUTER_PLATFORM_EXPORT char const* reasonText(Ip6PktInfo::Reason reason) noexcept;
inline void appendText(std::string& out, Ip6PktInfo::Reason reason) { out += reasonText(reason); }

}  // namespace Net
