#pragma once

#include <programs/common/text/FileDescriptor.h>

#include <csignal>

#include <chrono>
#include <vector>

namespace Tool {

/// The signals that end the program: SIGINT, SIGTERM and SIGHUP, without those that it was started to ignore, as by
/// nohup(1).
std::vector<int> stopSignals();

/// Blocks the stop signals while it lives, so that a command can ask for them where it is ready to end.
class StopSignals {
 public:
  StopSignals();
  StopSignals(StopSignals const&) = delete;
  StopSignals& operator=(StopSignals const&) = delete;
  ~StopSignals();

  /// Waits until that time, which may be past, or a stop signal; true: a signal came.
  bool waitUntil(std::chrono::steady_clock::time_point time);
  /// For poll(2): readable when a stop signal is pending.
  FileDescriptor descriptor() const;

 private:
  sigset_t signals_;
  sigset_t former_;
};

}  // namespace Tool
