#pragma once

#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <optional>
#include <vector>

namespace Tool {

/// Receives the Router Advertisements that arrive on an interface, for all nodes, for all routers or for this one: a
/// raw socket, RFC 3542. Messages with a wrong checksum come too. Does not block.
class RaSocket {
 public:
  struct Received {
    Net::Ip6Addr source;
    /// One that came in fragments is of no use, RFC 6980 5: `Reason::fragment`.
    Net::Ip6PktInfo::Result message;
  };

  /// Throws `Failure`: no rights, or the interface is down.
  explicit RaSocket(NetworkInterface const& device);

  /// For poll(2): readable when there is something to receive.
  int descriptor() const noexcept { return socket_.get(); }

  /// The next message, or nothing when there is none now. Throws `Failure`.
  std::optional<Received> receive();

  /// How many messages the kernel has had no room for, since they came faster than they were received.
  Fwk::U32 lost() const;

 private:
  std::string name_;
  int index_;
  FileDescriptor socket_;
  std::vector<Fwk::U8> buffer_;
};

}  // namespace Tool
