#pragma once

#include <programs/common/linux/NetworkInterface.h>
#include <programs/common/text/FileDescriptor.h>

#include <string>

namespace Tool {

/// Notices when an interface is taken away: a socket that is bound to one only falls silent then. rtnetlink(7).
class LinkWatch {
 public:
  /// Throws `Failure`, as `check` does too.
  explicit LinkWatch(NetworkInterface const& device);

  /// For poll(2): readable when something has changed about some interface.
  int descriptor() const noexcept { return socket_.get(); }

  /// Throws `Failure`, which says so, when the interface is gone.
  void check() const;

 private:
  void requireDevice() const;

  std::string name_;
  unsigned index_;
  FileDescriptor socket_;
};

}  // namespace Tool
