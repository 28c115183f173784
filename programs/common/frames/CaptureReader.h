#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <programs/common/frames/FrameDescription.h>

#include <memory>
#include <optional>
#include <span>
#include <string>

struct pcap;

namespace Tool {

/// A captured packet; its octets are valid until the next one is read.
struct CapturedPacket {
  Fwk::U64 number;  ///< counted from 1
  std::span<Fwk::U8 const> octets;
};

/// A capture file that is being read, pcap or pcapng, of Ethernet frames or of bare IP packets.
class CaptureReader {
 public:
  /// `-`: standard input. Throws `Failure`: it cannot be opened, is no capture file, or has another link type.
  explicit CaptureReader(std::string const& fileName);

  /// The next packet, or nothing at the end. Throws `Failure`, which names the number of the packet that cannot be
  /// read.
  std::optional<CapturedPacket> next();

  /// How the packets of this file begin, by its link type.
  Net::Ip6PktInfo::Result receive(CapturedPacket const& packet) const;
  FrameDescription describe(CapturedPacket const& packet) const;

 private:
  struct Close {
    void operator()(pcap* handle) const;
  };

  std::string fileName_;  ///< as messages call it
  std::unique_ptr<pcap, Close> handle_;
  bool isEthernet_ = false;
  Fwk::U64 read_ = 0;
};

}  // namespace Tool
