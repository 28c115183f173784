#include <RouterPlatform/Base/Steps.h>
#include <RouterPlatform/SharedTable/FileIo.h>
#include <RouterPlatform/SharedTable/Publication.h>
#include <RouterPlatform/SharedTable/ReaderBase.h>
#include <RouterPlatform/SharedTable/WriterBase.h>
#include <RouterPlatform/SharedTable/WriterCore.h>
#include <RouterPlatform/Stats/Counter.h>
#include <RouterPlatform/Trace/Assert.h>
#include <RouterPlatform/Trace/Trace.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>
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

void countRefusal(WriteStatus status) {
  (status == WriteStatus::full ? counters().full : counters().noSpace).addShared(1);
}

constexpr std::string_view moving = "moving the rows";

/// A key as its type's text form.
struct KeyText {
  RowType const& type;
  void const* key;
  void appendTo(std::string& out) const { type.appendKey(out, key); }
};

/// So short that it takes no memory.
Error outOfMemory() { return {Errc::system, ENOMEM, "out of memory"}; }

/// A message that must not fail: what is told may well be that there is no memory.
template <class... Parts>
void traceSurely(unsigned level, Trace::Location where, Parts const&... parts) noexcept {
  try {
    TRACE_AT(traceHandle, level, where, parts...);
  } catch (std::bad_alloc const&) {
    TRACE_AT(traceHandle, level, where, "out of memory");
  }
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

/// The memory that takes over the rows, and its publication.
struct WriterBase::Next {
  std::unique_ptr<Publication> place;
  std::shared_ptr<WriterCore> core;
  WriterCore::Damages damages;   ///< in the present place
  std::vector<U64> adopted;      ///< keys of the rows that a dead writer left and that are taken over
  Corruption adoptedCorruption;  ///< the first in the dead writer's file
};

/// The file that a dead writer left.
struct WriterBase::Former : ReaderBase {
  Former(WriterBase const& writer, std::string_view path)
      : ReaderBase(writer.type_, path, writer.collection_, {{}, writer.options_.directory}) {}
};

/// Tells the owner what has become of the table. Each callback may mount, unmount or end the writer: what is left to be
/// told is true no more then. All are called, whatever one of them throws.
class WriterBase::Telling {
 public:
  explicit Telling(WriterBase const& writer) noexcept
      : callbacks_(writer.callbacks_), told_(writer.told_), mounting_(told_->mountings) {}

  /// First of all, while nothing can have ended the writer.
  void damages(WriterBase const& writer, WriterCore::Damages const& damages, std::string_view during) {
    for (auto const& damage : damages)
      steps_.run([&] { writer.reportCorruption(damage.corruption, during, damage.key()); });
  }
  void adoption(WriterBase const& writer, Corruption const& corruption) {
    if (corruption) steps_.run([&] { writer.reportCorruption(corruption, "adopting rows", nullptr); });
  }
  void mounted() {
    told_->quiesced = false;
    tell(callbacks_->quiesced, false);
    tell(callbacks_->mountStatus);
  }
  void rowsChanged(WriterCore::Damages const& damages) {
    for (auto const& damage : damages)
      if (!damage.row.empty()) tell(callbacks_->rowChanged, damage.row.data());
  }
  void rowsAdopted(std::vector<U64> const& keys, std::size_t keyWords) {
    for (std::size_t at = 0; at < keys.size(); at += keyWords) tell(callbacks_->rowChanged, keys.data() + at);
  }
  /// An unmounting that was made untrue has not said that the table is quiesced; this one does.
  void unmounted() {
    tell(callbacks_->mountStatus);
    if (superseded() || std::exchange(told_->quiesced, true)) return;
    tell(callbacks_->quiesced, true);
  }
  /// Throws what the first of them threw.
  void finish() { steps_.finish(); }

 private:
  bool superseded() const noexcept { return told_->mountings != mounting_; }

  template <class Callback, class... Args>
  void tell(Callback const& callback, Args... args) noexcept {
    if (callback && !superseded()) steps_.run([&] { callback(args...); });
  }

  std::shared_ptr<BaseCallbacks const> const callbacks_;
  std::shared_ptr<Told> const told_;
  U64 const mounting_;
  Fwk::Steps steps_;
};

WriterBase::WriterBase(RowType const& type, std::string collection, WriterOptions const& options)
    : type_(type),
      collection_(std::move(collection)),
      options_(options),
      callbacks_(std::make_shared<BaseCallbacks>()),
      told_(std::make_shared<Told>()),
      core_(privateCore(type, options.capacity, options.capacity.initialRows)) {
  counters();  // made while there is memory
}

WriterBase::~WriterBase() {
  assertNotReporting();
  told_->mountings += 1;
  if (mountStatus_ == MountStatus::mounted) leaveFile();
}

void WriterBase::callbacksAre(BaseCallbacks callbacks) {
  callbacks_ = std::make_shared<BaseCallbacks>(std::move(callbacks));
}

U32 WriterBase::count() const noexcept { return core_->count(); }
U32 WriterBase::maxRows() const noexcept { return core_->maxRows(); }
U64 WriterBase::changeCount() const noexcept { return core_->changeCount(); }

Error WriterBase::mountPathIs(std::string_view path) {
  assertNotReporting();
  if (path.empty()) return mountPathDel();
  if (mountStatus_ != MountStatus::mounted) return mount(path);
  if (path == mountPath_) return {};
  std::string wanted;
  try {
    wanted = path;
  } catch (std::bad_alloc const&) {
    return outOfMemory();
  }
  auto const told = told_;
  U64 const before = told->mountings;
  Error error;
  Fwk::Steps steps;
  steps.run([&] { error = unmount(); });
  if (told->mountings == before + 1)
    steps.run([&] { error = mount(wanted); });
  else if (told->mountings != before)
    error = {};  // a callback has decided otherwise, or ended this
  steps.finish();
  return error;
}

Error WriterBase::mountPathDel() {
  assertNotReporting();
  if (mountStatus_ == MountStatus::mounted) return unmount();
  mountPath_.clear();
  if (mountStatus_ == MountStatus::failed) {
    mountStatus_ = MountStatus::unmounted;
    mountError_ = {};
    told_->mountings += 1;
    Telling telling(*this);
    telling.unmounted();
    telling.finish();
  }
  return {};
}

/// Copies the rows to where they go; what is damaged is left out.
Error WriterBase::moveRows(Next& next) {
  Corruption corruption;
  WriteStatus const status = next.core->copyFrom(*core_, next.damages, corruption);
  if (status == WriteStatus::ok) return {};
  if (status == WriteStatus::corrupt) {
    for (auto const& damage : next.damages) reportSurely(damage.corruption, moving, damage.key());
    finishWrite(status, corruption, nullptr);
  }
  return {Errc::noSpace, ENOSPC, collection_ + ": rows do not fit"};
}

/// Nobody changes the former file meanwhile: its writer is dead, and the place is claimed. It keeps its name until the
/// new file, with these rows in it, takes the name in one step.
void WriterBase::adoptRows(std::string_view path, Next& next) {
  Former former(*this, path);
  if (Error const error = former.attach()) {
    if (error.code != Errc::noTable)
      TRACE(traceHandle, 2, "Could not adopt rows of ", path, "/", collection_, ": ", error.code, ": ", error.text);
    return;
  }
  if (former.view().isRetired()) return;  // ended by its writer, which could not take the name away
  std::vector<U64> own(type_.rowSize / 8);
  std::size_t const keyWords = (type_.keySize + 7) / 8;
  WalkResult const walked = former.view().walk([&](void const* row) {
    Corruption corruption;
    if (next.core->view().lookup(row, own.data(), corruption) == LookupStatus::found) return true;
    WriteStatus const status = next.core->write(row, corruption);
    if (status == WriteStatus::corrupt) finishWrite(status, corruption, row);
    if (status != WriteStatus::ok) {
      countRefusal(status);
      TRACE(traceHandle, 2, "Could not adopt row ", KeyText{type_, row}, " of ", path, "/", collection_, ": ", status);
      return false;
    }
    next.adopted.resize(next.adopted.size() + keyWords);
    std::memcpy(&next.adopted[next.adopted.size() - keyWords], row, type_.keySize);
    return true;
  });
  next.adoptedCorruption = walked.firstCorruption;
  TRACE(traceHandle, 8, "Adopted ", next.adopted.size() / keyWords, " rows of ", path, "/", collection_);
}

Error WriterBase::publish(std::string_view path, Next& next) {
  next.place = std::make_unique<Publication>();
  next.core = std::make_shared<WriterCore>(type_, options_.capacity);
  Memory memory;
  if (Error error = next.place->claim(FileIo::chosenDirectory(options_.directory), path, collection_)) return error;
  if (Error error = next.place->createFile(next.core->memorySize(), memory)) return error;
  if (int const failure = next.core->start(std::move(memory), core_->count()))
    return FileIo::systemFailure(failure, collection_);
  if (Error error = moveRows(next)) return error;
  if (options_.adoptRows) adoptRows(path, next);
  next.core->completeHeader();
  return next.place->publish(next.core->memory(), options_.mode);
}

Error WriterBase::mount(std::string_view path) {
  Next next;
  Error error;
  U64 process = 0;
  try {
    process = FileIo::forkCount();
    mountPath_ = path;
    error = publish(mountPath_, next);
    mountError_ = error;
  } catch (std::bad_alloc const&) {
    mountError_ = error = outOfMemory();
  }
  told_->mountings += 1;
  if (error) {
    // Callbacks may mount again: what this try holds, the lock above all, is given back first.
    next.core.reset();
    next.place.reset();
    counters().mountFailed.addShared(1);
    traceSurely(2, Trace::Location::here(), "Could not mount ", mountPath_, "/", collection_, ": ", error.code, ": ",
                error.text);
    mountStatus_ = MountStatus::failed;
  } else {
    core_ = std::move(next.core);
    publication_ = std::move(next.place);
    mountStatus_ = MountStatus::mounted;
    mountedBy_ = process;
  }
  Telling telling(*this);
  telling.damages(*this, next.damages, moving);
  if (error) {
    telling.unmounted();
  } else {
    telling.adoption(*this, next.adoptedCorruption);
    telling.mounted();
    telling.rowsChanged(next.damages);
    telling.rowsAdopted(next.adopted, (type_.keySize + 7) / 8);
  }
  telling.finish();
  return error;
}

Error WriterBase::takeRowsBack(Next& next) try {
  next.core = privateCore(type_, options_.capacity, std::max(core_->count(), options_.capacity.initialRows));
  return moveRows(next);
} catch (std::bad_alloc const&) {
  return outOfMemory();
}

/// A table that has lost its name counts as one that could not be mounted.
Error WriterBase::unmount(Error const& lost) {
  Next next;
  Error error = takeRowsBack(next);
  if (error) {
    traceSurely(2, Trace::Location::here(), "Rows of ", mountPath_, "/", collection_,
                " stay in its file: ", error.text);
    if (isForkedCopy()) return error;
  }
  leaveFile();
  if (!error) core_ = std::move(next.core);  // otherwise the file's memory, which nobody can attach any more, is ours
  publication_.reset();
  mountStatus_ = lost ? MountStatus::failed : MountStatus::unmounted;
  if (lost) {
    mountError_ = lost;
    counters().mountFailed.addShared(1);
    traceSurely(2, Trace::Location::here(), "Lost ", mountPath_, "/", collection_, ": ", lost.text);
  }
  told_->mountings += 1;
  Telling telling(*this);
  telling.damages(*this, next.damages, moving);
  if (!lost) mountPath_.clear();
  if (!error) telling.rowsChanged(next.damages);
  telling.unmounted();
  telling.finish();
  return error;
}

Error WriterBase::verifyMount() {
  assertNotReporting();
  if (mountStatus_ != MountStatus::mounted || isForkedCopy()) return {};
  Error lost;
  try {
    bool named = false;
    if (Error error = publication_->findName(core_->memory(), named)) return error;
    if (named) return {};
    lost = {Errc::noTable, 0, "the name of the table is gone, or leads to another file"};
  } catch (std::bad_alloc const&) {
    return outOfMemory();
  }
  (void)unmount(lost);  // without memory the rows stay in the file, which is traced
  return lost;
}

void WriterBase::close() noexcept {
  assertNotReporting();
  if (mountStatus_ != MountStatus::mounted) return;
  leaveFile();
  publication_.reset();
  mountPath_.clear();
  mountStatus_ = MountStatus::unmounted;
  told_->mountings += 1;
  Telling telling(*this);
  telling.unmounted();
  try {
    telling.finish();
  } catch (...) {
    traceSurely(1, Trace::Location::here(), "A callback has thrown while a table was closed");
  }
}

/// A forked child has the same file mapped, which is its parent's.
bool WriterBase::isForkedCopy() const noexcept { return FileIo::forkCount() != mountedBy_; }

void WriterBase::leaveFile() noexcept {
  if (isForkedCopy()) return;
  // The name goes first: a reader that hears of the end must not find the same file again.
  publication_->withdraw(core_->memory());
  core_->retire();
}

void WriterBase::corruptionHandlerIs(CorruptionHandler handler) {
  corruptionHandler_ = handler ? std::make_shared<CorruptionHandler const>(std::move(handler)) : nullptr;
}

void WriterBase::assertNotReporting() const noexcept {
  ASSERT_AT_TEXT(!reporting_, (Trace::Location{source, __LINE__, "assertNotReporting"}),
                 "a corruption handler does not mount, unmount or end its table");
}

void WriterBase::reportCorruption(Corruption const& corruption, std::string_view during, void const* key) const {
  struct Reporting {
    bool& flag;
    bool const before = std::exchange(flag, true);
    ~Reporting() { flag = before; }
  } const reporting{reporting_};
  counters().corrupt.addShared(1);
  std::string message;
  try {
    Trace::appendTexts(message, "Table ", mountPath_, "/", collection_, ": ", corruption, " while ", during);
    if (key) Trace::appendTexts(message, ", key ", KeyText{type_, key});
  } catch (std::bad_alloc const&) {
    // The handler gets what there was memory for.
  }
  if (auto const handler = corruptionHandler_)  // which may set another one
    (*handler)(message);
  else
    traceSurely(1, Trace::Location::here(), message);
}

void WriterBase::reportSurely(Corruption const& corruption, std::string_view during, void const* key) const noexcept {
  Fwk::Steps().run([&] { reportCorruption(corruption, during, key); });
}

void WriterBase::failRemoval() const noexcept {
  ASSERT_AT_TEXT(false, (Trace::Location{source, __LINE__, "safeRemove"}), "TableMap::safeRemove() in no man's land");
}

WriteStatus WriterBase::finishWrite(WriteStatus status, Corruption const& corruption, void const* key) {
  if (status == WriteStatus::ok) [[likely]]
    return status;
  if (status == WriteStatus::corrupt) {
    reportSurely(corruption, "writing", key);
    ASSERT_AT_TEXT(false, (Trace::Location{source, __LINE__, "safeWrite"}), "TableMap::safeWrite() in no man's land");
  }
  countRefusal(status);
  TRACE(traceHandle, 2, "Could not write row ", KeyText{type_, key}, " to ", mountPath_, "/", collection_, ": ", status,
        " ( ", count(), " rows, ", maxRows(), " at most )");
  return status;
}

WriteStatus WriterBase::write(void const* row) {
  Corruption corruption;
  WriteStatus const status = core_->write(row, corruption);
  return finishWrite(status, corruption, row);
}

WriteStatus WriterBase::commit(void const* row) {
  Corruption corruption;
  WriteStatus const status = core_->commit(row, corruption);
  return finishWrite(status, corruption, row);
}

bool WriterBase::remove(void const* key, void* removed) {
  Corruption corruption;
  WriterCore::RemoveStatus const status = core_->remove(key, removed, corruption);
  if (status == WriterCore::RemoveStatus::corrupt) {
    reportSurely(corruption, "removing", key);
    failRemoval();
  }
  return status == WriterCore::RemoveStatus::removed;
}

void WriterBase::assertRemovable() const {
  WriterCore::Damages const damages = core_->damages();
  for (auto const& damage : damages) reportSurely(damage.corruption, "removing all rows", damage.key());
  if (!damages.empty()) failRemoval();
}

void WriterBase::removeAll() {
  assertRemovable();
  std::vector<U64> removed(type_.rowSize / 8);
  walk([&](void const* row) {
    remove(row, removed.data());
    return true;
  });
}

bool WriterBase::lookup(void const* key, void* row) const {
  Corruption corruption;
  LookupStatus const status = core_->view().lookup(key, row, corruption);
  if (status == LookupStatus::corrupt) reportCorruption(corruption, "looking up", key);
  return status == LookupStatus::found;
}

bool WriterBase::stage(void const* key, void* row) {
  Corruption corruption;
  LookupStatus const status = core_->stage(key, row, corruption);
  if (status == LookupStatus::corrupt) reportCorruption(corruption, "looking up", key);
  return status == LookupStatus::found;
}

WalkResult WriterBase::walk(RowVisitor const& visit) const {
  std::shared_ptr<WriterCore const> const walked = core_;  // the visitor may mount or unmount
  WalkResult const result = walked->view().walk(visit);
  if (result.corrupt > 0) reportCorruption(result.firstCorruption, "walking", nullptr);
  return result;
}

}  // namespace SharedTable
