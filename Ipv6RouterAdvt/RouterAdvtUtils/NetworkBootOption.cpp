#include <Ipv6RouterAdvt/RouterAdvtUtils/NetworkBootOption.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/OptionWriter.h>
#include <RouterPlatform/Nd/Icmp6HdrOptions.h>

#include <cstring>

namespace RouterAdvt {

using Net::Icmp6HdrNetworkBootOption;

void copyNetworkBootOptionToRaMsgBuf(U8* buf, U64& msgLen, U64 pktBufSize, String const& url) {
  constexpr U64 headSize = sizeof(Icmp6HdrNetworkBootOption);
  if (msgLen + headSize > pktBufSize) {
    traceCouldNotCopy("network boot option", msgLen + headSize, pktBufSize);
    return;
  }
  U64 const room = (pktBufSize - msgLen) / 8 * 8;
  bool const cut = url.size() + headSize > room;
  U64 const urlLen = cut ? room - headSize : url.size();
  U64 const padding = (8 - urlLen % 8) % 8;  // none when cut: room and head are whole units

  UTILS_TRACE(8, "Adding network boot option: ");
  auto& option = appendOption<Icmp6HdrNetworkBootOption>(buf, msgLen);
  option.length = static_cast<U8>((headSize + urlLen + padding) / 8);
  option.paddingLenIs(static_cast<U16>(padding));
  option.zero = 0;
  option.reserved1Is(0);
  std::memcpy(buf + msgLen, url.data(), urlLen);
  msgLen += urlLen;
  std::memset(buf + msgLen, 0, padding);
  msgLen += padding;
}

}  // namespace RouterAdvt
