#include <programs/common/linux/StopSignals.h>

#include <sys/signalfd.h>

#include <algorithm>
#include <cerrno>

namespace Tool {

std::vector<int> stopSignals() {
  std::vector<int> signals;
  for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction present {};
    if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) signals.push_back(signal);
  }
  return signals;
}

StopSignals::StopSignals() {
  sigemptyset(&signals_);
  for (int const signal : stopSignals()) sigaddset(&signals_, signal);
  sigprocmask(SIG_BLOCK, &signals_, &former_);
}

StopSignals::~StopSignals() { sigprocmask(SIG_SETMASK, &former_, nullptr); }

bool StopSignals::waitUntil(std::chrono::steady_clock::time_point time) {
  using namespace std::chrono;
  while (true) {
    auto const left = std::max(time - steady_clock::now(), steady_clock::duration::zero());
    auto const whole = duration_cast<seconds>(left);
    timespec const timeout{static_cast<time_t>(whole.count()), static_cast<long>(nanoseconds(left - whole).count())};
    if (sigtimedwait(&signals_, nullptr, &timeout) > 0) return true;
    if (errno == EAGAIN) return false;  // the time is over; EINTR: another signal
  }
}

FileDescriptor StopSignals::descriptor() const {
  return FileDescriptor(signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK));
}

}  // namespace Tool
