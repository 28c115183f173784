#pragma once

#include <Ipv6RouterAdvt/Export.h>
#include <Ipv6RouterAdvt/Heard/RouterNeighborRa.h>
#include <Ipv6RouterAdvt/PlatformTypes.h>
#include <RouterPlatform/Fwk/Entity.h>
#include <RouterPlatform/SharedTable/CollectionControl.h>
#include <RouterPlatform/SharedTable/Writer.h>

#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace Stats {
class Counter;
}  // namespace Stats

namespace RouterAdvt::Table {

class RouterNeighborRaStatusZeroReferencesNotifiee;

/// When each neighbouring router was last heard, in a table in shared memory: this process writes it, others read it.
/// With a parent the table is mounted at `tablePath()`; without one the rows are this process's own, and every
/// operation works all the same. Key: `name`. Used by one thread at a time.
///
/// Its own end: when the last outside reference goes while the table is mounted, the control keeps the entity alive
/// until it is unmounted, which is when its parent goes.
class ROUTER_ADVT_EXPORT RouterNeighborRaStatus final : public Fwk::Entity {
 public:
  enum Attr : AttrId {
    routerNeighborRaAttr = Fwk::firstOwnAttr,
    routerNeighborRaControlAttr,
    tablePathAttr,
  };
  using Writer = SharedTable::Writer<RouterNeighborRa>;

  explicit RouterNeighborRaStatus(Name name);
  /// `options` of the table: how large it may become, who may read it where, and whether it adopts the rows that a dead
  /// agent left.
  RouterNeighborRaStatus(Name name, SharedTable::WriterOptions const& options);

  Name name() const override { return name_; }
  Name const& key() const noexcept { return name_; }

  /// The rows, for reading. Walked as copies, `{key, value}`, in the table's own order; the entity may change during a
  /// walk in any way: removed rows are passed over, added rows are not visited.
  class Rows;
  Rows routerNeighborRa() const;
  /// Copy of the row of that key, or the default row.
  RouterNeighborRa routerNeighborRa(RouterNeighborRaKey const& key) const;
  /// Writes the row under its own key and notifies with the key: every time, whether or not it changes anything. The
  /// table counts and traces a row that it has no room for; such a row is notified like any other, and
  /// `lastWriteStatus` gives the reason.
  void routerNeighborRaIs(RouterNeighborRa const& row);
  /// Outcome of the last write or commit: `ok`, or the reason why the table does not have the row. Observers of a write
  /// already find its outcome. `ok` before the first.
  SharedTable::WriteStatus lastWriteStatus() const { return lastWriteStatus_; }
  /// Removes and returns the row of that key and notifies with the key; the default row, and nobody notified, when
  /// there is none.
  RouterNeighborRa routerNeighborRaDel(RouterNeighborRaKey const& key);
  /// `routerNeighborRaDel` for every row that is there now. Damage anywhere goes to the corruption handler and then
  /// fails the assertion of a removal, before any row is removed.
  void routerNeighborRaDelAll();

  /// The table's writable slot with the row of that key in it, or null. It is changed there, then published by
  /// `routerNeighborRaCommit`; valid until the next call.
  RouterNeighborRa* routerNeighborRaWritable(RouterNeighborRaKey const& key) { return table_.writable(key); }
  /// Publishes a row that was changed in the writable slot, without a lookup, and notifies with its key.
  void routerNeighborRaCommit(RouterNeighborRa const& row);
  /// Notifies that the row of that key changed.
  void routerNeighborRaNotify(RouterNeighborRaKey const& key);

  /// State of the table's mounting. Null once the last outside reference has gone.
  Ptr<SharedTable::CollectionControl> routerNeighborRaControl() const { return control_; }
  /// Replaces the control. The new one gets the table's present state and all later changes, and keeps alive
  /// the entity that the former one kept. The former one hears that its collection is unmounted and quiesced. With
  /// null, the former one goes on to hear of the table.
  void routerNeighborRaControlIs(Ptr<SharedTable::CollectionControl> const& control);

  /// Where the table is mounted, below the table directory.
  static String tablePath() { return routerNeighborRaTablePath; }

  /// Mounts the table at `tablePath()` when there is a parent, unmounts it when there is none.
  void handleParent(Ptr<Fwk::Entity> parent) override;

  /// Looks whether other processes still find the table, which another process may have removed; for a timer of the
  /// agent, once a second or less often. If they do not, the mount status becomes `failed`, which is traced, and the
  /// reason is returned; the rows stay in the process. To mount the table anew, take the entity out of its tree and put
  /// it back, or call `handleParent(nullptr)` and then `handleParent(parent())`.
  SharedTable::Error verifyMount();

  /// Why the table could not be mounted, or how its name was lost, when its mount status is `failed`.
  SharedTable::Error const& mountError() const { return table_.mountError(); }

  /// Handler of damage in the shared memory; it runs before the operation that met the damage fails. It must not take
  /// the entity out of its tree, put it there, or end it.
  void corruptionHandlerIs(SharedTable::WriterBase::CorruptionHandler handler) {
    table_.corruptionHandlerIs(std::move(handler));
  }

  static constexpr char const* fwkTypeName = "RouterAdvt::Table::RouterNeighborRaStatus";
  static Fwk::TypeRecord const& typeRecord();
  Fwk::TypeRecord const& fwkType() const override { return typeRecord(); }

 private:
  friend class RouterNeighborRaStatusZeroReferencesNotifiee;
  ~RouterNeighborRaStatus() override;
  void bindTable(Ptr<SharedTable::CollectionControl> const& control);
  void handTableOverTo(Ptr<SharedTable::CollectionControl> const& control);

  // In the reverse order of their ends.
  Name name_;
  Ptr<Fwk::Notifiee> zeroReferences_;
  Ptr<SharedTable::CollectionControl> tableControl_;  ///< informed by the table: `control_`, or its last value but null
  Writer table_;
  Ptr<SharedTable::CollectionControl> control_;
  SharedTable::WriteStatus lastWriteStatus_ = SharedTable::WriteStatus::ok;
  Stats::Counter& written_;
  Stats::Counter& deleted_;
  Stats::Counter& notified_;
};

/// The rows of the table, for reading; used while the entity lives, by its thread.
class RouterNeighborRaStatus::Rows {
 public:
  /// A row under its key, as a walk gives it.
  struct Entry {
    RouterNeighborRaKey key;
    RouterNeighborRa value;
  };

  explicit Rows(RouterNeighborRaStatus const& status) : status_(&status) {}

  U32 size() const { return status_->table_.count(); }
  bool empty() const { return size() == 0; }
  bool contains(RouterNeighborRaKey const& key) const { return status_->table_.contains(key); }

  /// Keeps the entity alive and remembers the keys that are there when it begins.
  class Iterator {
   public:
    explicit Iterator(RouterNeighborRaStatus const& status);
    Entry const& operator*() const { return entry_; }
    Entry const* operator->() const { return &entry_; }
    Iterator& operator++();
    bool operator==(std::default_sentinel_t) const { return next_ > keys_.size(); }

   private:
    Ptr<RouterNeighborRaStatus const> status_;
    std::vector<RouterNeighborRaKey> keys_;
    std::size_t next_ = 0;  ///< of `keys_`: the one after that of `entry_`; beyond the end: done
    Entry entry_;
  };
  Iterator begin() const { return Iterator(*status_); }
  std::default_sentinel_t end() const { return {}; }

 private:
  RouterNeighborRaStatus const* status_;
};

inline RouterNeighborRaStatus::Rows RouterNeighborRaStatus::routerNeighborRa() const { return Rows(*this); }

}  // namespace RouterAdvt::Table
