#include <programs/common/text/FileDescriptor.h>
#include <programs/common/text/FileText.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace Tool {

namespace {

FileText cannot(char const* what) { return {{}, std::string("cannot be ") + what + ": " + std::strerror(errno)}; }

FileText readToTheEnd(int file, std::size_t sizeMax = std::string::npos) {
  FileText result;
  std::array<char, 65536> chunk;
  while (true) {
    ssize_t const count = read(file, chunk.data(), chunk.size());
    if (count == 0) return result;
    if (count > 0)
      result.text.append(chunk.data(), static_cast<std::size_t>(count));
    else if (errno != EINTR)
      return cannot("read");
    if (result.text.size() > sizeMax) return {{}, "has more than " + std::to_string(sizeMax) + " octets"};
  }
}

}  // namespace

FileText readFileText(std::string const& fileName) {
  if (fileName == "-") return readToTheEnd(STDIN_FILENO);
  FileDescriptor const file(open(fileName.c_str(), O_RDONLY | O_CLOEXEC));
  return file.get() < 0 ? cannot("opened") : readToTheEnd(file.get());
}

FileText readRegularFileText(std::string const& fileName, std::size_t sizeMax) {
  // To open a FIFO would otherwise wait for a writer.
  FileDescriptor const file(open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat found {};
  if (file.get() < 0 || fstat(file.get(), &found) != 0) return cannot("opened");
  return S_ISREG(found.st_mode) ? readToTheEnd(file.get(), sizeMax) : FileText{{}, "is no regular file"};
}

}  // namespace Tool
