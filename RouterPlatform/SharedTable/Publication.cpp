#include <RouterPlatform/SharedTable/Format.h>
#include <RouterPlatform/SharedTable/Publication.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace SharedTable {
namespace {

/// Whether the mark of retirement is where we would write it.
bool isOurFormat(FixedHeader const& header) noexcept {
  return header.magic == magicText && header.byteOrder == byteOrderMark && header.version == formatVersion &&
         header.crc == crc32(&header, offsetof(FixedHeader, crc));
}

/// Marks a file that a writer left without a word, and wakes its readers so that they find the new one.
void retireFormer(Fd const& file) noexcept {
  void* const page = mmap(nullptr, headerSize, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  if (page == MAP_FAILED) return;
  auto& live = *reinterpret_cast<LiveState*>(static_cast<std::byte*>(page) + liveStateOffset);
  if (live.retired.load(std::memory_order_relaxed) == 0) {  // without a partner: its writer is dead
    // Relaxed: shown by the release store of `retired`.
    live.retiredTime.store(FileIo::realtime(), std::memory_order_relaxed);
    // Release; pairs with the acquire load in View::isRetired.
    live.retired.store(retiredMark, std::memory_order_release);
    // Release; pairs with the acquire load in ReaderBase::wait.
    live.changeWord.fetch_add(1, std::memory_order_release);
    FileIo::wakeAll(live.changeWord);
  }
  munmap(page, headerSize);
}

}  // namespace

Error Publication::claim(std::string chosen, std::string_view mountPath, std::string_view collection) {
  chosen_ = std::move(chosen);
  mountPath_ = mountPath;
  collection_ = collection;
  name_ = collection_ + ".tbl";
  temporaryName_ = "." + collection_ + ".tmp";
  if (!FileIo::namesAreSound(mountPath, collection))
    return {Errc::badName, 0, path(collection_) + ": not a mount path and collection name"};
  if (Error error = FileIo::openDirectory(FileIo::tableDirectory(chosen_), mountPath, true, {}, directory_))
    return error;
  std::string const lockName = collection_ + ".lock";
  do {
    if (Error error = FileIo::openTrusted(directory_, lockName, O_RDWR | O_CREAT, {}, lock_)) return error;
    if (int const error = FileIo::lockForWriting(lock_.get()))
      return error == EAGAIN ? secondWriter() : FileIo::systemFailure(error, path(lockName));
    // A lock on a file that has lost its name keeps nobody out.
  } while (!FileIo::namesFile(directory_, lockName, lock_.get()));
  return checkFormer();
}

Error Publication::secondWriter() const {
  return {Errc::secondWriter, EAGAIN, path(collection_) + ": another writer has this table"};
}

/// Somebody may have removed the `.lock` of a writer that lives; its table is locked too.
Error Publication::checkFormer() const {
  Fd file;
  if (FileIo::openTrusted(directory_, name_, O_RDONLY, {}, file)) return {};  // no table: publishing replaces it
  bool held = false;
  if (int const error = FileIo::findWriteLock(file.get(), held)) return FileIo::systemFailure(error, path(name_));
  return held ? secondWriter() : Error{};
}

Publication::~Publication() {
  if (building_) unlinkat(directory_.get(), temporaryName_.c_str(), 0);
}

Error Publication::createFile(U64 size, Memory& out) {
  unlinkat(directory_.get(), temporaryName_.c_str(), 0);  // what a killed writer may have left
  Fd file;
  if (Error error = FileIo::openTrusted(directory_, temporaryName_, O_RDWR | O_CREAT | O_EXCL, {}, file)) return error;
  building_ = true;
  if (int const error = out.mapFile(std::move(file), size)) return FileIo::systemFailure(error, path(temporaryName_));
  return {};
}

/// The file that has the name now, if it is a whole table of this format.
Fd Publication::openFormer() const {
  Fd file;
  if (FileIo::openTrusted(directory_, name_, O_RDWR, {}, file)) return {};
  FixedHeader header{};
  struct stat status {};
  bool const isTable = fstat(file.get(), &status) == 0 && status.st_size >= static_cast<off_t>(headerSize) &&
                       pread(file.get(), &header, sizeof header, 0) == static_cast<ssize_t>(sizeof header) &&
                       isOurFormat(header);
  return isTable ? std::move(file) : Fd();
}

Error Publication::publish(Memory const& memory, mode_t mode) {
  Fd const former = openFormer();
  // Nobody else can have the file open yet, so nobody's lock is in the way: this one tells readers that we live.
  if (int const error = FileIo::lockForWriting(memory.fd())) return FileIo::systemFailure(error, path(name_));
  if (fchmod(memory.fd(), mode & 0755) != 0 ||
      renameat(directory_.get(), temporaryName_.c_str(), directory_.get(), name_.c_str()) != 0)
    return FileIo::systemFailure(errno, path(name_));
  building_ = false;
  if (former) retireFormer(former);
  return {};
}

Error Publication::findName(Memory const& memory, bool& named) const {
  return FileIo::findName(FileIo::tableDirectory(chosen_), mountPath_, name_, {}, memory.fd(), named);
}

void Publication::withdraw(Memory const& memory) noexcept {
  if (FileIo::namesFile(directory_, name_, memory.fd())) unlinkat(directory_.get(), name_.c_str(), 0);
}

}  // namespace SharedTable
