#pragma once

#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <span>
#include <string>

namespace Tool {

/// Sends complete Ethernet frames on an interface; packet(7).
class PacketSocket {
 public:
  /// Throws `Failure` without the right to open packet sockets, and when the interface is down.
  explicit PacketSocket(NetworkInterface const& device);

  /// Throws `Failure` when the frame cannot be sent.
  void send(std::span<Fwk::U8 const> frame);

 private:
  std::string name_;
  int index_;
  FileDescriptor socket_;
};

}  // namespace Tool
