#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/IntfStatus.h>

#include <string>

namespace Tool {

/// Copies the kernel's IPv6 settings of an interface into the interface's status: the files of two directories.
class ProcFiles {
 public:
  explicit ProcFiles(std::string root = "/proc/sys/net/ipv6") : root_(std::move(root)) {}

  /// Updates both file sets of `status`, each named after its directory. Observers are notified of the files that
  /// differ. Without a directory, as for an interface that this machine does not have, the set is removed. A file that
  /// cannot be read is left out. A directory that exists and cannot be read leaves its set unchanged.
  void capture(RouterAdvt::IntfStatus& status) const;

 private:
  std::string root_;
};

}  // namespace Tool
