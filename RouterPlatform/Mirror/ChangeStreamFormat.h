#pragma once

#include <RouterPlatform/Forms/StreamCodec.h>

#include <string_view>

/// The records of a change stream, as docs/formats/change-stream.md describes them. A record is its kind, the size of
/// its body as a number, and the body.
namespace Fwk::ChangeStream::detail {

enum class RecordKind : U8 {
  hello = 1,  ///< magic, version, schema hash, schema: first of a stream
  batch,      ///< number: first of every drain
  begin,      ///< of a snapshot
  root,       ///< index, type name, key: enters a tree of the snapshot
  end,        ///< of a snapshot
  at,         ///< index of a root, steps: goes to an entity
  value,      ///< place, value: sets a scalar
  member,     ///< place, key: makes a member or a child, which comes last, and enters it
  leave,      ///< back to where `root` or `member` entered
  row,        ///< place, key, value: sets a value of a collection; one that exists keeps its place
  lastRow,    ///< the same, and the value comes last
  removed,    ///< place, key: removes a member or child
  mark,       ///< the mirror equals the source now
};

inline constexpr std::string_view magic = "RtrStrm\n";
inline constexpr U64 version = 1;
inline constexpr std::size_t maxRoots = 64;  ///< an agent has a few; bounds what a malformed stream can ask for
inline constexpr std::size_t maxDepth = 64;  ///< far deeper than the model; bounds what a malformed stream can ask for

/// Appends a record whose body `fill` appends.
template <class Fill>
void putRecord(OctetSink& out, RecordKind kind, Fill fill) {
  out.octet(static_cast<U8>(kind));
  out.block(fill);
}
inline void putRecord(OctetSink& out, RecordKind kind) {
  out.octet(static_cast<U8>(kind));
  out.octet(0);
}

}  // namespace Fwk::ChangeStream::detail
