#include <RouterPlatform/SharedTable/Publication.h>
#include <RouterPlatform/SharedTable/WriterBase.h>
#include <RouterPlatform/SharedTable/WriterCore.h>
#include <RouterPlatform/Stats/Counter.h>
#include <RouterPlatform/Trace/Assert.h>
#include <RouterPlatform/Trace/Trace.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <vector>

namespace SharedTable {
namespace {

Trace::Handle const traceHandle("SharedTable");
constexpr char const* source = "RouterPlatform/SharedTable";

struct Counters {
  Stats::Counter& full = Stats::counter("sharedTableFull");
  Stats::Counter& noSpace = Stats::counter("sharedTableNoSpace");
  Stats::Counter& corrupt = Stats::counter("sharedTableCorrupt");
  Stats::Counter& mountFailed = Stats::counter("sharedTableMountFailed");
};

Counters& counters() {
  static Counters all;
  return all;
}

std::shared_ptr<WriterCore> privateCore(RowType const& type, Capacity capacity, U32 rows) {
  auto core = std::make_shared<WriterCore>(type, capacity);
  Memory memory;
  if (memory.mapPrivate(core->memorySize()) != 0 || core->start(std::move(memory), rows) != 0) throw std::bad_alloc();
  return core;
}

}  // namespace

static constexpr std::string_view mountStatusTexts[] = {"unmounted", "mounted", "failed"};

void appendText(std::string& out, MountStatus status) { out += mountStatusTexts[static_cast<U8>(status)]; }

bool parseText(std::string_view text, MountStatus& status) noexcept {
  auto const* const found = std::find(std::begin(mountStatusTexts), std::end(mountStatusTexts), text);
  if (found == std::end(mountStatusTexts)) return false;
  status = static_cast<MountStatus>(found - std::begin(mountStatusTexts));
  return true;
}

/// Tells the owner what a mounting or unmounting has made of the table. Each callback may mount, unmount or end the
/// writer: what is left to be told is true no more then.
class WriterBase::Telling {
 public:
  explicit Telling(WriterBase& writer) noexcept
      : callbacks_(writer.callbacks_), mountings_(writer.mountings_), mounting_(++*mountings_) {}

  void mountStatus() const { tell(callbacks_->mountStatus); }
  void quiesced(bool quiesced) const { tell(callbacks_->quiesced, quiesced); }
  void rowsChanged(LostRows const& rows) const {
    for (auto const& row : rows) tell(callbacks_->rowChanged, row.data());
  }

 private:
  template <class Callback, class... Args>
  void tell(Callback const& callback, Args... args) const {
    if (callback && *mountings_ == mounting_) callback(args...);
  }

  std::shared_ptr<BaseCallbacks const> const callbacks_;
  std::shared_ptr<U64> const mountings_;
  U64 const mounting_;
};

WriterBase::WriterBase(RowType const& type, std::string collection, WriterOptions const& options)
    : type_(type),
      collection_(std::move(collection)),
      options_(options),
      callbacks_(std::make_shared<BaseCallbacks>()),
      mountings_(std::make_shared<U64>(0)),
      core_(privateCore(type, options.capacity, options.capacity.initialRows)) {}

WriterBase::~WriterBase() {
  *mountings_ += 1;
  if (mountStatus_ == MountStatus::mounted) leaveFile();
}

void WriterBase::callbacksAre(BaseCallbacks callbacks) {
  callbacks_ = std::make_shared<BaseCallbacks>(std::move(callbacks));
}

U32 WriterBase::count() const noexcept { return core_->count(); }
U32 WriterBase::maxRows() const noexcept { return core_->maxRows(); }
U64 WriterBase::changeCount() const noexcept { return core_->changeCount(); }

Error WriterBase::mountPathIs(std::string_view path) {
  if (path.empty()) return mountPathDel();
  if (mountStatus_ != MountStatus::mounted) return mount(path);
  if (path == mountPath_) return {};
  std::string const wanted(path);
  auto const mountings = mountings_;
  U64 const unmounting = *mountings + 1;
  if (Error error = unmount()) return error;
  if (*mountings != unmounting) return {};  // a callback has decided otherwise, or ended this
  return mount(wanted);
}

Error WriterBase::mountPathDel() {
  if (mountStatus_ == MountStatus::mounted) return unmount();
  mountPath_.clear();
  if (mountStatus_ == MountStatus::failed) {
    mountStatus_ = MountStatus::unmounted;
    mountError_ = {};
    Telling(*this).mountStatus();
  }
  return {};
}

/// Copies the rows into `next` and makes it the table. `lostRows` are those that cannot be trusted any more.
Error WriterBase::moveRows(WriterCore& next, LostRows& lostRows) {
  auto const lost = [&](Corruption const& corruption, void const* row) {
    reportCorruption(corruption, "moving the rows");
    if (!row) return;
    auto const* words = static_cast<U64 const*>(row);
    lostRows.emplace_back(words, words + type_.rowSize / 8);
  };
  WriteStatus const status = next.copyFrom(*core_, lost);
  if (status == WriteStatus::ok) return {};
  if (status == WriteStatus::corrupt) return {Errc::damaged, 0, collection_ + ": damaged while the rows were moved"};
  return {Errc::noSpace, ENOSPC, collection_ + ": rows do not fit"};
}

Error WriterBase::mount(std::string_view path) {
  std::string wanted(path);
  auto place = std::make_unique<Publication>();
  auto next = std::make_shared<WriterCore>(type_, options_.capacity);
  LostRows lostRows;
  Memory memory;
  Error error = place->claim(FileIo::directoryOr(options_.directory), path, collection_);
  if (!error) error = place->createFile(next->memorySize(), memory);
  if (!error)
    if (int const failure = next->start(std::move(memory), core_->count()))
      error = FileIo::systemFailure(failure, collection_);
  if (!error) error = moveRows(*next, lostRows);
  if (!error) {
    next->completeHeader();
    error = place->publish(next->memory(), options_.mode);
  }
  mountPath_ = std::move(wanted);
  mountError_ = error;
  if (error) {
    // Callbacks may mount again: what this try holds, the lock above all, is given back first.
    next.reset();
    memory = {};
    place.reset();
    ++counters().mountFailed;
    TRACE(traceHandle, 2, "Could not mount ", path, "/", collection_, ": ", error.code, ": ", error.text);
    mountStatus_ = MountStatus::failed;
    Telling(*this).mountStatus();
    return error;
  }
  core_ = std::move(next);
  publication_ = std::move(place);
  mountStatus_ = MountStatus::mounted;
  mountedBy_ = getpid();
  Telling const telling(*this);
  telling.quiesced(false);
  telling.mountStatus();
  telling.rowsChanged(lostRows);
  return {};
}

Error WriterBase::unmount() {
  LostRows lostRows;
  auto next = privateCore(type_, options_.capacity, std::max(core_->count(), options_.capacity.initialRows));
  if (Error error = moveRows(*next, lostRows)) return error;
  leaveFile();
  core_ = std::move(next);
  publication_.reset();
  mountPath_.clear();
  mountStatus_ = MountStatus::unmounted;
  Telling const telling(*this);
  telling.rowsChanged(lostRows);
  telling.mountStatus();
  telling.quiesced(true);
  return {};
}

void WriterBase::close() noexcept {
  if (mountStatus_ != MountStatus::mounted) return;
  leaveFile();
  publication_.reset();
  mountPath_.clear();
  mountStatus_ = MountStatus::unmounted;
  Telling const telling(*this);
  telling.mountStatus();
  telling.quiesced(true);
}

/// A forked child has the same file mapped, which is its parent's.
void WriterBase::leaveFile() noexcept {
  if (getpid() != mountedBy_) return;
  // The name goes first: a reader that hears of the end must not find the same file again.
  publication_->withdraw(core_->memory());
  core_->retire();
}

void WriterBase::reportCorruption(Corruption const& corruption, std::string_view during) const {
  ++counters().corrupt;
  std::string message;
  Trace::appendTexts(message, "Table ", mountPath_, "/", collection_, ": ", corruption, " while ", during);
  if (CorruptionHandler const handler = corruptionHandler_)  // which may set another one
    handler(message);
  else
    TRACE(traceHandle, 1, message);
}

WriteStatus WriterBase::finishWrite(WriteStatus status, Corruption const& corruption) {
  if (status == WriteStatus::ok) [[likely]]
    return status;
  if (status == WriteStatus::corrupt) {
    reportCorruption(corruption, "writing");
    ASSERT_AT_TEXT(false, (Trace::Location{source, __LINE__, "safeWrite"}), "TableMap::safeWrite() in no man's land");
  }
  ++(status == WriteStatus::full ? counters().full : counters().noSpace);
  TRACE(traceHandle, 2, "Could not write row to ", mountPath_, "/", collection_, ": ", status, " ( ", count(),
        " rows, ", maxRows(), " at most )");
  return status;
}

WriteStatus WriterBase::write(void const* row) {
  Corruption corruption;
  WriteStatus const status = core_->write(row, corruption);
  return finishWrite(status, corruption);
}

WriteStatus WriterBase::commit(void const* row) {
  Corruption corruption;
  WriteStatus const status = core_->commit(row, corruption);
  return finishWrite(status, corruption);
}

bool WriterBase::remove(void const* key, void* removed) {
  Corruption corruption;
  WriterCore::RemoveStatus const status = core_->remove(key, removed, corruption);
  if (status == WriterCore::RemoveStatus::corrupt) {
    reportCorruption(corruption, "removing");
    ASSERT_AT_TEXT(false, (Trace::Location{source, __LINE__, "safeRemove"}), "TableMap::safeRemove() in no man's land");
  }
  return status == WriterCore::RemoveStatus::removed;
}

bool WriterBase::lookup(void const* key, void* row) const {
  Corruption corruption;
  LookupStatus const status = core_->view().lookup(key, row, corruption);
  if (status == LookupStatus::corrupt) reportCorruption(corruption, "looking up");
  return status == LookupStatus::found;
}

bool WriterBase::stage(void const* key, void* row) {
  Corruption corruption;
  LookupStatus const status = core_->stage(key, row, corruption);
  if (status == LookupStatus::corrupt) reportCorruption(corruption, "looking up");
  return status == LookupStatus::found;
}

WalkResult WriterBase::walk(View::Visitor const& visit) const {
  std::shared_ptr<WriterCore const> const walked = core_;  // the visitor may mount or unmount
  WalkResult const result = walked->view().walk(visit);
  if (result.corrupt > 0) reportCorruption(result.firstCorruption, "walking");
  return result;
}

}  // namespace SharedTable
