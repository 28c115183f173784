#pragma once

#include <RouterPlatform/Base/BaseTypes.h>

namespace SharedTable {

using Fwk::U32;

/// How large a table starts and how large it may become.
struct Capacity {
  /// A bucket names a slot in 24 bits, of which all ones mark a tombstone; the spare slot needs a number too.
  static constexpr U32 largestMaxRows = 0xfffff0;

  U32 initialRows = 4096;
  U32 maxRows = 1048576;
};

}  // namespace SharedTable
