#include <Ipv6RouterAdvt/RouterAdvtUtils/DnsSearchListOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

namespace RouterAdvt {

using Net::Icmp6HdrDnsslOption;

namespace {

/// 0x80 in every octet of `word` that is a dot, 0 in the others. No octet's sum carries into the next one.
U64 flagsOfDots(U64 word) {
  constexpr U64 ones = 0x0101010101010101;
  U64 const zeroAtDots = word ^ ones * U64{'.'};
  return ~(((zeroAtDots & ones * 0x7f) + ones * 0x7f) | zeroAtDots) & ones * 0x80;
}

/// Writes `text` as labels. It stands one octet further on than the labels begin, so that every dot is where the length
/// of the label behind it belongs; a length is filled in where its label ends. A label above 63 octets, which RFC 1035
/// 3.1 does not allow, is written with the low 8 bits of its length.
inline void writeLabels(U8* buf, U64& msgLen, std::string_view text) {
  U8* const labels = buf + msgLen;
  std::size_t label = 0;
  auto const endLabel = [&](std::size_t end) {
    labels[label] = static_cast<U8>(end - label);
    label = end + 1;
  };
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::memcpy(labels + 1 + at, text.data() + at, 8);
    for (U64 dots = flagsOfDots(Net::wordFirstOctetLowest(text.data() + at)); dots != 0; dots &= dots - 1)
      endLabel(at + static_cast<std::size_t>(std::countr_zero(dots)) / 8);
  }
  for (; at < text.size(); ++at) {
    labels[1 + at] = static_cast<U8>(text[at]);
    if (text[at] == '.') endLabel(at);
  }
  endLabel(text.size());
  msgLen += 1 + text.size();
}

/// Writes those labels of a suffix before the first one that does not fit.
void writeLabelsThatFit(U8* buf, U64& msgLen, U64 pktBufSize, std::string_view suffix) {
  std::size_t pos = 0, labelEnd = 0;
  while (msgLen + (labelEnd = std::min(suffix.find('.', pos), suffix.size())) + 1 <= pktBufSize) pos = labelEnd + 1;
  traceCouldNotCopy("dns suffx", msgLen + labelEnd + 1, pktBufSize);
  if (pos > 0) writeLabels(buf, msgLen, suffix.substr(0, pos - 1));
}

/// Writes one suffix as labels with a terminating zero octet, RFC 1035 3.1. Empty labels, of a trailing dot too, are
/// written as they are.
void encodeDNSSuffix(U8* buf, U64& msgLen, U64 pktBufSize, String const& suffix) {
  UTILS_TRACE(1, "Before Encoding DNS Suffix: ", suffix, " length: ", msgLen);
  if (!suffix.empty()) {
    if (msgLen + suffix.size() + 1 > pktBufSize) return writeLabelsThatFit(buf, msgLen, pktBufSize, suffix);
    writeLabels(buf, msgLen, suffix);
  }
  buf[msgLen++] = 0;
  UTILS_TRACE(8, "After Encoding DNS Suffix: ", suffix, " length: ", msgLen);
}

constexpr U64 roundedUpTo8(U64 size) { return (size + 7) / 8 * 8; }

/// Closes the option that began at `option`, with its names from `start` to `msgLen`: padding and length.
void closeOption(U8* buf, U64& msgLen, U64 start, Icmp6HdrDnsslOption& option) {
  U64 const numBytesToPad = roundedUpTo8(msgLen - start) - (msgLen - start);
  UTILS_TRACE(8, "numBytesToPad: ", numBytesToPad, "at offset: ", msgLen);
  std::memset(buf + msgLen, 0, numBytesToPad);
  msgLen += numBytesToPad;
  option.length = static_cast<U8>((msgLen - start) / 8 + 1);
}

/// The size of the option by the estimate: its head, and a suffix's octets and one more. 0: the group is empty.
U64 estimatedSize(IntfConfig const& intfConfig, U32 intfLifetime, U32 lifetime) {
  U64 total = sizeof(Icmp6HdrDnsslOption);
  bool any = false;
  for (DNSSuffixConfigEntry const& entry : intfConfig.dnsSuffixes().frozen()) {
    if (entry.validLifetime(intfLifetime) != lifetime) continue;
    any = true;
    total += entry.suffix().size() + 1;
    UTILS_TRACE(8, "Computing Length DNS Suffix: ", entry.suffix(), " length: ", total);
  }
  return any ? total : 0;
}

}  // namespace

int copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, U32 lifetime,
                                              Ptr<IntfConfig const> const& intfConfig, LifeTimeHashMap& visited) {
  U32 const intfLifetime = intfConfig->validDnsSuffixesLifetime();
  U64 const total = estimatedSize(*intfConfig, intfLifetime, lifetime);
  if (total == 0) return 1;
  UTILS_TRACE(8, "Total Length of DNS Suffixes: ", total);
  U64 const padded = roundedUpTo8(total);
  UTILS_TRACE(8, "Total Length of DNS Suffixes after padding: ", padded);
  UTILS_TRACE(8, "PktBufSize: ", pktBufSize);
  if (pktBufSize < msgLen + padded) {
    traceCouldNotCopy("dnsSuffixes", msgLen + padded, pktBufSize);
    return 0;
  }

  auto& option = appendOption<Icmp6HdrDnsslOption>(buf, msgLen);
  option.reserved = 0;
  option.lifetime = lifetime;
  U64 const start = msgLen;
  for (DNSSuffixConfigEntry const& entry : intfConfig->dnsSuffixes().frozen())
    if (entry.validLifetime(intfLifetime) == lifetime) encodeDNSSuffix(buf, msgLen, pktBufSize, entry.suffix());
  visited.visitedIs(lifetime, true);
  UTILS_TRACE(8, "MsgLenBforeDnsSuffixes: ", start, "MsgLenAfterDnsSuffixes:", msgLen);
  closeOption(buf, msgLen, start, option);
  return 1;
}

void copyDNSSuffixesToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, Ptr<IntfConfig const> const& intfConfig) {
  U32 const intfLifetime = intfConfig->validDnsSuffixesLifetime();
  UTILS_TRACE(8, "Number of Dns Suffixes: ", intfConfig->dnsSuffixes().size(), "intf lifetime: ", intfLifetime);
  LifeTimeHashMap visited;
  for (DNSSuffixConfigEntry const& entry : intfConfig->dnsSuffixes().frozen()) {
    U32 const lifetime = entry.validLifetime(intfLifetime);
    bool const done = visited.visited(lifetime);
    UTILS_TRACE(8, "dnsSuffixLifetime: ", lifetime, "visited: ", done);
    if (!done) copyDNSSuffixesWithSameLifeTimeToRaMsgBuf(buf, msgLen, pktBufSize, lifetime, intfConfig, visited);
  }
}

}  // namespace RouterAdvt
