#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/PlatformTypes.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>

#include <string_view>

/// What the option writers share. A writer takes the frame's first octet and `msgLen`, the octets written so far, which
/// it advances, and writes every octet that it takes: what the buffer held does not matter. A Prefix Information option
/// is the exception, which takes zeros. The buffer ends at `pktBufSize`, behind which there is tail room.
namespace RouterAdvt {

/// Says that something was left out, with the two lengths that were compared.
inline void traceCouldNotCopy(std::string_view what, U64 length, U64 pktBufSize,
                              Trace::Location place = Trace::Location::here(utilsSource)) {
  TRACE_AT(utilsTrace, 3, place, "Could not copy ", what, " as msgLen ( ", length, " ) > pktBufSize > ( ", pktBufSize,
           ")");
}

/// Takes the next `sizeof(Option)` octets for an option's fixed part, and sets its type, and the length of that part
/// alone. What is not written stays as it is in the buffer.
template <class Option>
Option& appendOption(U8* buf, U64& msgLen) {
  auto& option = *reinterpret_cast<Option*>(buf + msgLen);
  msgLen += sizeof(Option);
  option.type = Option::typeValue;
  option.length = sizeof(Option) / 8;
  return option;
}

}  // namespace RouterAdvt
