#include <programs/common/text/FileDescriptor.h>
#include <programs/common/text/FileText.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

FileText cannotBe(char const* verb) { return {{}, std::string("cannot be ") + verb + ": " + std::strerror(errno)}; }

FileText readToEnd(int file, std::size_t sizeMax = std::string::npos) {
  FileText result;
  std::array<char, 65536> chunk;
  while (true) {
    ssize_t const count = read(file, chunk.data(), chunk.size());
    if (count == 0) return result;
    if (count > 0)
      result.text.append(chunk.data(), static_cast<std::size_t>(count));
    else if (errno != EINTR)
      return cannotBe("read");
    if (result.text.size() > sizeMax) return {{}, "has more than " + std::to_string(sizeMax) + " octets"};
  }
}

}  // namespace

FileText readFileText(std::string const& fileName) {
  if (fileName == "-") return readToEnd(STDIN_FILENO);
  FileDescriptor const file(open(fileName.c_str(), O_RDONLY | O_CLOEXEC));
  return file.get() < 0 ? cannotBe("opened") : readToEnd(file.get());
}

FileText readRegularFileText(std::string const& fileName, std::size_t sizeMax) {
  // O_NONBLOCK: opening a FIFO would otherwise wait for a writer.
  FileDescriptor const file(open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat found {};
  if (file.get() < 0 || fstat(file.get(), &found) != 0) return cannotBe("opened");
  return S_ISREG(found.st_mode) ? readToEnd(file.get(), sizeMax) : FileText{{}, "is not a regular file"};
}

}  // namespace Tool
