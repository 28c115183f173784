#pragma once

#include <programs/common/text/FileDescriptor.h>

#include <csignal>

#include <chrono>
#include <vector>

namespace Tool {

/// The signals that are to end the program: Ctrl-C and its like, but for those that it was started to ignore, as
/// nohup(1) does.
std::vector<int> stopSignals();

/// Ctrl-C and its like, held back while this lives and asked for instead: a command ends where it is ready to.
class StopSignals {
 public:
  StopSignals();
  StopSignals(StopSignals const&) = delete;
  StopSignals& operator=(StopSignals const&) = delete;
  ~StopSignals();

  /// Waits for that time, which may be past; true: it is to stop.
  bool waitUntil(std::chrono::steady_clock::time_point time);
  /// For poll(2): readable when one of them is pending.
  FileDescriptor descriptor() const;

 private:
  sigset_t signals_;
  sigset_t former_;
};

}  // namespace Tool
