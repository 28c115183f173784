#pragma once

#include <RouterPlatform/SharedTable/WriterBase.h>

#include <optional>
#include <utility>

namespace SharedTable {

/// The one writer of a table: rows of type `R` (see RowType.h) under their keys. It starts unmounted, with the rows in
/// this process; every operation works in either state. One thread. docs/adr/0015
///
///     SharedTable::Writer<Neighbor> neighbors("neighbor");
///     neighbors.mountPathIs("routing6/neighbors");
///     neighbors.rowIs(neighbor);
template <class R>
class Writer : public WriterBase {
 public:
  using Row = R;
  using Key = KeyOf<R>;

  /// Calls by which the writer informs its owner, on the owner's thread, from inside the operation.
  struct Callbacks {
    /// A row changed by the table's own doing: it was found damaged when the rows moved and is gone, or it was taken
    /// over from a dead writer (`WriterOptions::adoptRows`). Not called for what the owner does.
    std::function<void(Key const&)> rowChanged;
    /// `mountStatus()` has another value.
    std::function<void()> mountStatus;
    /// False: other processes may be reading from now on. True: the file is retired and nothing of it is in use any
    /// more; the last call of an unmounting, from which the owner may end.
    std::function<void(bool)> quiesced;
  };

  explicit Writer(std::string collection, WriterOptions const& options = {})
      : WriterBase(rowTypeOf<R>(), std::move(collection), options) {}

  void callbacksAre(Callbacks callbacks) {
    BaseCallbacks base{nullptr, std::move(callbacks.mountStatus), std::move(callbacks.quiesced)};
    if (callbacks.rowChanged)
      base.rowChanged = [changed = std::move(callbacks.rowChanged)](void const* octets) {
        changed(copyOf<Key>(octets));
      };
    WriterBase::callbacksAre(std::move(base));
  }

  /// Row of `key`; nothing if there is none, or (reported to the corruption handler) if it cannot be trusted.
  std::optional<R> row(Key const& key) const {
    R row;
    return lookup(&key, &row) ? std::optional<R>(row) : std::nullopt;
  }
  bool contains(Key const& key) const { return row(key).has_value(); }

  /// Creates the row or replaces the one of the same key. Readers see the old row or the new one, nothing between. A
  /// row that cannot be added is counted ("sharedTableFull", "sharedTableNoSpace") and traced at level 2 with its key;
  /// the others stay as they are. Damage goes to the corruption handler and then fails the assertion.
  WriteStatus rowIs(R const& row) { return write(&row); }

  /// Removes the row of `key` and returns it. Damage goes to the corruption handler and then fails the assertion.
  std::optional<R> rowDel(Key const& key) {
    R row;
    return remove(&key, &row) ? std::optional<R>(row) : std::nullopt;
  }

  /// Removes every row. Damage goes to the corruption handler and then fails the assertion, and no row is removed.
  void rowDelAll() { removeAll(); }

  /// The writable slot, with the row of `key` in it; null if there is none. Change the row there, but not its key, and
  /// publish it with `commit`. Valid until the next call.
  R* writable(Key const& key) { return stage(&key, &writable_) ? &writable_ : nullptr; }

  /// Publishes a row that was changed in the writable slot; no lookup is needed for that. Any other row is written as
  /// `rowIs` does.
  WriteStatus commit(R const& row) { return WriterBase::commit(&row); }

  /// Calls `visit(row)` for every row, in the table's own order; if it returns bool, false ends the walk. It may change
  /// the table, mount and unmount it, but not end the writer. A row that is there throughout is visited exactly once,
  /// any other at most once; after mounting or unmounting it sees the rows as they were then.
  template <class Visit>
  WalkResult forEach(Visit&& visit) const {
    return walk([&](void const* octets) { return visitRow<R>(visit, octets); });
  }

 private:
  R writable_{};
};

}  // namespace SharedTable
