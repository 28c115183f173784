#pragma once

#include <RouterPlatform/Mirror/ChangeStreamFormat.h>

#include <cstdio>
#include <span>
#include <string>
#include <vector>

/// A change stream as text.
namespace StreamText {

using Fwk::OctetBuffer;
using Fwk::OctetSource;
using Fwk::U8;
using Fwk::ChangeStream::detail::RecordKind;

/// Octets as `0a1b`.
inline std::string hex(std::span<U8 const> octets) {
  std::string out;
  for (U8 const octet : octets) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", octet);
    out += digits;
  }
  return out;
}

inline char const* kindName(U8 kind) {
  constexpr char const* names[] = {"?",     "hello",  "batch", "begin", "root",    "end",     "at",
                                   "value", "member", "leave", "row",   "lastRow", "removed", "mark"};
  return kind < std::size(names) ? names[kind] : "?";
}

struct Record {
  RecordKind kind;
  std::span<U8 const> body;
  std::size_t end;  ///< offset behind it in the stream
};

/// The records of octets that begin and end with a record.
inline std::vector<Record> records(std::span<U8 const> octets) {
  std::vector<Record> result;
  OctetSource in(octets);
  U8 kind = 0;
  OctetSource body;
  while (in.octet(kind) && in.block(body))
    result.push_back({static_cast<RecordKind>(kind), body.rest(), octets.size() - in.rest().size()});
  return result;
}

/// `member 0c0161` and so on; of `hello` only the kind.
inline std::vector<std::string> lines(std::span<U8 const> octets) {
  std::vector<std::string> result;
  for (Record const& record : records(octets)) {
    std::string& line = result.emplace_back(kindName(static_cast<U8>(record.kind)));
    if (record.kind != RecordKind::hello && !record.body.empty()) (line += ' ') += hex(record.body);
  }
  return result;
}

/// Number of records of a kind.
inline std::size_t count(std::span<U8 const> octets, RecordKind kind) {
  std::size_t result = 0;
  for (Record const& record : records(octets)) result += record.kind == kind;
  return result;
}

}  // namespace StreamText
