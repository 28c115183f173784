#pragma once

#include <RouterPlatform/SharedTable/Error.h>

#include <functional>

namespace SharedTable {

/// Outcome of a walk over all rows.
struct WalkResult {
  U64 rows = 0;          ///< handed to the visitor
  bool exact = false;    ///< the rows are those of one moment: nothing changed during the walk
  bool stopped = false;  ///< the visitor ended the walk
  bool attached = true;  ///< false: there was no table to walk
  bool retired = false;  ///< a reader's table: its writer has left this file, see `Lookup::retired`
  U64 busy = 0;          ///< rows left out because they changed faster than they could be copied
  U64 corrupt = 0;       ///< places left out because they are damaged
  Corruption firstCorruption;
};

/// Gets a row's octets; false ends the walk.
using RowVisitor = std::function<bool(void const* row)>;

}  // namespace SharedTable
