#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/IntfStatus.h>

#include <string>

namespace Tool {

/// What the kernel says of the IPv6 of an interface: the files of two directories, which go into the interface's status
/// as they are.
class ProcFiles {
 public:
  explicit ProcFiles(std::string root = "/proc/sys/net/ipv6") : root_(std::move(root)) {}

  /// Brings both file sets of `status` up to date, each named after its directory. Observers hear of the files that
  /// differ. An interface that this machine does not have has no sets; a file that cannot be read is left out; a
  /// directory that is there and cannot be read leaves its set as it is.
  void capture(RouterAdvt::IntfStatus& status) const;

 private:
  std::string root_;
};

}  // namespace Tool
