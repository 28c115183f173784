#include <RouterPlatform/SharedTable/FileIo.h>
#include <RouterPlatform/SharedTable/Memory.h>
#include <RouterPlatform/SharedTable/ReaderBase.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace SharedTable {
namespace {

using std::chrono::milliseconds;

/// Longest sleep before the writer is looked after.
constexpr milliseconds slice{1000};
/// First sleep of a wait, more than two clock ticks: a writer whose wake woke nobody does not wake again in the same
/// tick, so what changes right after a wait began may come without a wake. Each sleep is twice as long as the one
/// before, so that a wake that is missed for whatever reason costs no more than about the time already waited.
constexpr milliseconds firstSlice{25};
/// Longer waits are cut to this, so that the deadline can be computed.
constexpr milliseconds longestWait = std::chrono::hours(24 * 365);

constexpr U32 swappedByteOrderMark = 0x04030201;

/// Magic, byte order mark, version, and place and kind of the CRC are the same in all versions.
Error checkHeader(FixedHeader const& header, RowType const& type, std::string const& path) {
  if (header.magic != magicText) return {Errc::damaged, 0, path + ": not a table"};
  if (header.byteOrder == swappedByteOrderMark)
    return {Errc::incompatible, 0, path + ": written in the other byte order"};
  if (crc32(&header, offsetof(FixedHeader, crc)) != header.crc)
    return {Errc::damaged, 0, path + ": the header is damaged"};
  if (header.byteOrder != byteOrderMark) return {Errc::incompatible, 0, path + ": written in an unknown byte order"};
  if (header.version != formatVersion)
    return {Errc::incompatible, 0, path + ": format version " + std::to_string(header.version)};
  if (header.layoutHash != type.layoutHash || header.rowSize != type.rowSize || header.keySize != type.keySize)
    return {Errc::incompatible, 0, path + ": rows of another layout"};
  return {};
}

bool geometryIsSound(FixedHeader const& header) noexcept {
  if (header.maxRows == 0 || header.maxRows > Capacity::largestMaxRows || header.minIndexBits < 3) return false;
  Geometry const g = Geometry::of(header.rowSize, header.keySize, header.maxRows, header.minIndexBits);
  return header.minIndexBits <= g.maxIndexBits && header.maxIndexBits == g.maxIndexBits &&
         header.indexOffset == g.indexOffset && header.slotsOffset == g.slotsOffset && header.fileSize == g.fileSize;
}

}  // namespace

struct ReaderBase::Attachment {
  Memory memory;
  FixedHeader header{};
  bool writerWasAlive = false;
};

ReaderBase::ReaderBase(RowType const& type, std::string_view mountPath, std::string_view collection,
                       ReaderOptions options)
    : type_(type),
      owner_(options.owner),
      directory_(FileIo::chosenDirectory(std::move(options.directory))),
      mountPath_(mountPath),
      collection_(collection),
      path_(pathIn(FileIo::tableDirectory(directory_))) {}

std::string ReaderBase::pathIn(std::string const& directory) const {
  return directory + "/" + mountPath_ + "/" + collection_ + ".tbl";
}

ReaderBase::~ReaderBase() = default;

bool ReaderBase::attached() const noexcept { return attachment_ != nullptr; }
void ReaderBase::detach() noexcept {
  view_ = View();
  attachment_.reset();
}

U32 ReaderBase::count() const noexcept { return view_ ? view_.count().value_or(0) : 0; }
U64 ReaderBase::changeCount() const noexcept { return view_ ? view_.changeCount() : 0; }

Error ReaderBase::open(std::unique_ptr<Attachment>& out) {
  std::string const base = FileIo::tableDirectory(directory_);
  path_ = pathIn(base);
  if (!FileIo::namesAreSound(mountPath_, collection_))
    return {Errc::badName, 0, path_ + ": not a mount path and collection name"};
  Fd directory;
  Fd file;
  if (Error error = FileIo::openDirectory(base, mountPath_, false, owner_, directory)) return error;
  if (Error error = FileIo::openTrusted(directory, collection_ + ".tbl", O_RDONLY, owner_, file)) return error;
  auto attachment = std::make_unique<Attachment>();
  FixedHeader& header = attachment->header;
  ssize_t const size = pread(file.get(), &header, sizeof header, 0);
  if (size < 0) return FileIo::systemFailure(errno, path_);
  if (size < static_cast<ssize_t>(sizeof header)) return {Errc::damaged, 0, path_ + ": truncated"};
  if (Error error = checkHeader(header, type_, path_)) return error;
  struct stat status {};
  if (fstat(file.get(), &status) != 0) return FileIo::systemFailure(errno, path_);
  if (!geometryIsSound(header)) return {Errc::damaged, 0, path_ + ": the header contradicts itself"};
  U64 const fileSize = static_cast<U64>(status.st_size);
  if (fileSize < header.fileSize) return {Errc::damaged, 0, path_ + ": truncated"};
  if (fileSize > header.fileSize) return {Errc::damaged, 0, path_ + ": longer than its header says"};
  attachment->writerWasAlive = FileIo::isLockedForWriting(file.get());
  if (int const error = attachment->memory.mapReadOnly(std::move(file), header.fileSize))
    return FileIo::systemFailure(error, path_);
  out = std::move(attachment);
  return {};
}

Error ReaderBase::attach() {
  detach();
  attachError_ = open(attachment_);
  if (attachment_) view_ = View(attachment_->memory.base(), attachment_->header, type_);
  return attachError_;
}

WriterState ReaderBase::writer() const noexcept {
  if (!attachment_) return {};
  LiveState const& live = view_.live();
  WriterState state;
  bool const retired = view_.isRetired();
  state.alive = !retired && FileIo::isLockedForWriting(attachment_->memory.fd());
  state.pid = attachment_->header.writerPid;
  state.createdTime = attachment_->header.createdTime;
  state.changeTime = live.changeTime.load(std::memory_order_relaxed);  // without a partner: a number by itself
  // Relaxed: the acquire load of `retired` shows it, see View::isRetired.
  if (retired) state.retiredTime = live.retiredTime.load(std::memory_order_relaxed);
  return state;
}

/// Whether the name leads to another file than the attached one, or to none. What cannot be told is no reason to let go
/// of the rows that are there.
bool ReaderBase::isReplaced() const {
  bool named = false;
  Error const error = FileIo::findName(FileIo::tableDirectory(directory_), mountPath_, collection_ + ".tbl", owner_,
                                       attachment_->memory.fd(), named);
  return !error && !named;
}

WaitResult ReaderBase::reattach() {
  if (!attach()) {
    if (!view_.isRetired()) return WaitResult::attached;
    // Its writer could not take the name away: nothing comes from that file any more.
    detach();
    attachError_ = {Errc::noTable, 0, path_ + ": its writer has ended it"};
  }
  return attachError_.code == Errc::noTable ? WaitResult::tableGone : WaitResult::unreadable;
}

std::optional<WaitResult> ReaderBase::checkWriter() {
  if (isReplaced()) return reattach();
  if (FileIo::isLockedForWriting(attachment_->memory.fd())) return std::nullopt;
  if (!std::exchange(attachment_->writerWasAlive, false)) return std::nullopt;
  return WaitResult::writerGone;
}

WaitResult ReaderBase::wait(U64 seen, milliseconds timeout) {
  using Clock = std::chrono::steady_clock;
  auto const deadline = Clock::now() + std::min<milliseconds>(timeout, longestWait);
  milliseconds longest = firstSlice;
  while (true) {
    auto const left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    milliseconds const sleep = std::min(longest, left);
    longest = std::min(2 * longest, slice);
    if (!attachment_) {
      Errc const before = attachError_ ? attachError_.code : Errc::noTable;
      WaitResult const found = reattach();
      if (found == WaitResult::attached || attachError_.code != before) return found;
      if (left <= milliseconds::zero()) return WaitResult::timedOut;
      std::this_thread::sleep_for(sleep);
      continue;
    }
    LiveState const& live = view_.live();
    // Acquire; pairs with the release stores in WriterCore::announce and WriterCore::retire. Loaded before the count:
    // if both change after that, the word is another one and the sleep does not begin.
    U32 const word = live.changeWord.load(std::memory_order_acquire);
    if (view_.isRetired()) return reattach();
    if (changeCount() != seen) return WaitResult::changed;
    if (left <= milliseconds::zero()) return checkWriter().value_or(WaitResult::timedOut);
    FileIo::wait(live.changeWord, word, static_cast<int>(sleep.count()));
    // Relaxed and without a partner: if it moved, the next turn loads it again.
    if (live.changeWord.load(std::memory_order_relaxed) != word) continue;
    if (auto const happened = checkWriter()) return *happened;
  }
}

}  // namespace SharedTable
