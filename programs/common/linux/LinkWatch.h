#pragma once

#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <string>

namespace Tool {

/// Notices that an interface was removed; rtnetlink(7). A socket bound to a removed interface only falls silent.
class LinkWatch {
 public:
  /// Throws `Failure` when the interface is gone, or changes of interfaces cannot be watched.
  explicit LinkWatch(NetworkInterface const& device);

  /// For poll(2): readable after a change of any interface.
  int descriptor() const noexcept { return socket_.get(); }

  /// Throws `Failure` when the interface is gone.
  void check() const;

 private:
  void requireDevice() const;

  std::string name_;
  unsigned index_;
  FileDescriptor socket_;
};

}  // namespace Tool
