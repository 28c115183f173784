#pragma once

#include <RouterPlatform/Packet/Ip6PktInfo.h>
#include <tools/routeradvt/FileDescriptor.h>
#include <tools/routeradvt/NetworkInterface.h>

#include <optional>
#include <vector>

namespace Tool {

/// Receives the Router Advertisements that arrive on an interface, for all nodes, for all routers or for this one: a
/// raw socket, RFC 3542. Messages with a wrong checksum come too. Does not block.
class RaSocket {
 public:
  /// Throws `Failure`: no rights, or the interface is down.
  explicit RaSocket(NetworkInterface const& device);

  /// For poll(2): readable when there is something to receive.
  int descriptor() const noexcept { return socket_.get(); }

  /// The next message, or nothing when there is none now. Throws `Failure`.
  std::optional<Net::Ip6PktInfo::Result> receive();

 private:
  std::string name_;
  FileDescriptor socket_;
  std::vector<Fwk::U8> buffer_;
};

}  // namespace Tool
