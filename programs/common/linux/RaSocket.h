#pragma once

#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <optional>
#include <vector>

namespace Tool {

/// Receives the Router Advertisements that arrive on an interface for all nodes, for all routers or for this machine,
/// through a raw socket (RFC 3542). Messages with a wrong checksum are received too. Does not block.
class RaSocket {
 public:
  struct Received {
    Net::Ip6Addr source;
    /// `Reason::fragment` for a fragmented message, which must be ignored (RFC 6980 5).
    Net::Ip6PktInfo::Result message;
  };

  /// Throws `Failure` without the right to open raw sockets, and when the interface is down.
  explicit RaSocket(NetworkInterface const& device);

  /// For poll(2): readable when a message has arrived.
  int descriptor() const noexcept { return socket_.get(); }

  /// The next message, or nothing when there is none now. Throws `Failure`.
  std::optional<Received> receive();

  /// The number of messages that the kernel dropped because they arrived faster than they were received.
  Fwk::U32 lost() const;

 private:
  std::string name_;
  int index_;
  FileDescriptor socket_;
  std::vector<Fwk::U8> buffer_;
};

}  // namespace Tool
