#include <programs/common/linux/FileWatch.h>

#include <sys/inotify.h>

#include <array>
#include <filesystem>

namespace Tool {

FileWatch::FileWatch(std::string fileName)
    : fileName_(std::move(fileName)), inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  restart();
}

void FileWatch::restart() {
  std::array<char, 4096> events;
  while (read(inotify_.get(), events.data(), events.size()) > 0) continue;
  lookAgain();
}

void FileWatch::lookAgain() {
  watchDirectoryOf(fileName_);
  std::error_code error;
  auto const target = std::filesystem::canonical(fileName_, error);
  if (!error) watchDirectoryOf(target);
}

void FileWatch::watchDirectoryOf(std::string const& path) const {
  // Without IN_CREATE: a new file is reported when its writer closes it.
  constexpr uint32_t events = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ONLYDIR;
  auto const directory = std::filesystem::path(path).parent_path();
  // A directory that is watched already keeps its watch. lookAgain() retries a directory that is missing.
  inotify_add_watch(inotify_.get(), directory.empty() ? "." : directory.c_str(), events);
}

}  // namespace Tool
