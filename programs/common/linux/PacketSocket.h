#pragma once

#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <span>
#include <string>

namespace Tool {

/// Puts Ethernet frames on an interface as they are: a packet socket, packet(7).
class PacketSocket {
 public:
  /// Throws `Failure`: no rights, or the interface is down.
  explicit PacketSocket(NetworkInterface const& device);

  /// Throws `Failure`, which says what is wrong.
  void send(std::span<Fwk::U8 const> frame);

 private:
  std::string name_;
  int index_;
  FileDescriptor socket_;
};

}  // namespace Tool
