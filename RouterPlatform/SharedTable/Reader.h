#pragma once

#include <RouterPlatform/SharedTable/ReaderBase.h>

#include <utility>

namespace SharedTable {

/// A row, if it was found.
template <class R>
struct Lookup {
  LookupStatus status = LookupStatus::notAttached;
  R row{};                ///< the default row unless found
  Corruption corruption;  ///< what is damaged, with status `corrupt`
  bool retired = false;   ///< the writer has left this file: the row is the last one it had, and changes no more

  explicit operator bool() const noexcept { return status == LookupStatus::found; }
};

/// Reads the table that a writer, mostly another process, keeps at a mount path. It only loads: nothing it does can
/// disturb the writer. Many threads may look up and walk at once, as long as none attaches, detaches or waits.
///
/// A writer that unmounts, or that follows another one, leaves the file that it or the other one had: the file is
/// retired. The reader goes on with its rows until it attaches anew, which `wait` does by itself. A program that never
/// waits looks at `retired` in what lookups and walks return, and then calls `attach`. The rows of a writer that has
/// died are not retired before the next writer comes; `writer().alive` tells.
///
///     SharedTable::Reader<Neighbor> neighbors("routing6/neighbors", "neighbor");
///     if (auto error = neighbors.attach()) return fail(error.text);
///     U64 seen = neighbors.changeCount();
///     neighbors.forEach([](Neighbor const& n) { print(n); });
///     neighbors.wait(seen, 10s);
template <class R>
class Reader : public ReaderBase {
 public:
  using Row = R;
  using Key = KeyOf<R>;

  /// Attaches nothing yet.
  Reader(std::string_view mountPath, std::string_view collection, ReaderOptions options = {})
      : ReaderBase(rowTypeOf<R>(), mountPath, collection, std::move(options)) {}

  /// The row of `key` at one moment of the call.
  Lookup<R> row(Key const& key) const {
    Lookup<R> result;
    result.status = view().lookup(&key, &result.row, result.corruption);
    if (!result) result.row = R{};
    result.retired = view() && view().isRetired();
    return result;
  }

  /// Calls `visit(row)` for every row, in the table's own order; if it returns bool, false ends the walk. Each row is
  /// whole. A row that is there throughout is visited exactly once, any other at most once; `exact` in the result says
  /// that nothing changed meanwhile.
  template <class Visit>
  WalkResult forEach(Visit&& visit) const {
    WalkResult result = view().walk([&](void const* octets) { return visitRow<R>(visit, octets); });
    result.retired = view() && view().isRetired();
    return result;
  }
};

}  // namespace SharedTable
