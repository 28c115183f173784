#include <Ipv6RouterAdvt/RouterAdvtUtils/BootUrl.h>
#include <RouterPlatform/Nd/NetworkBoot.h>

namespace RouterAdvt {

void copyNetworkBootOptionToRaMsgBuf(AdvertDraft& draft, String const& url) {
  constexpr U64 unit = Net::Icmp6HdrOption::lengthUnit;
  constexpr U64 headSize = sizeof(Net::Icmp6HdrNetworkBootOption);
  if (!draft.out.fits(headSize)) return draft.leaveOutNetworkBoot(draft.msgLen() + headSize);
  U64 const urlRoom = draft.out.room() / unit * unit - headSize;
  if (url.size() > urlRoom) draft.cutUrl(urlRoom);
  DRAFT_TRACE(draft, 8, "Adding network boot option: ");
  put(draft.out, Net::NetworkBoot{.url = std::string_view(url).substr(0, urlRoom)});
}

}  // namespace RouterAdvt
