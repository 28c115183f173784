#pragma once

#include <Ipv6RouterAdvt/RouterAdvtUtils/LeftOut.h>
#include <Ipv6RouterAdvt/RouterAdvtUtils/UtilsTrace.h>
#include <RouterPlatform/Nd/FrameWriter.h>

#include <string_view>

namespace RouterAdvt {

/// An advertisement while it is written, and where to note what does not fit.
class AdvertDraft {
 public:
  explicit AdvertDraft(Net::FrameWriter const& writer, LeftOut* leftOut = nullptr) : out(writer), leftOut_(leftOut) {
    if (leftOut_) *leftOut_ = {.frameSizeMax = out.frameLimit()};
  }

  U64 msgLen() const { return out.offset(); }
  /// Whether any level is enabled: asked once, since a message asks for its own level only then.
  bool traced() const { return traced_; }
  /// Whether the entries that do not fit are noted in a `LeftOut`. They are traced in any case.
  bool notesLeftOut() const { return leftOut_ != nullptr; }

  // Each notes what does not fit, and traces at level 3 that the frame would have had `frameSize` octets with it.
  using Place = Trace::Location;
  void leaveOut(Ip6AddrWithMask const& prefix) const;  ///< not traced: `prefixesEnd` traces once for all prefixes
  void prefixesEnd(Place place = Place::here(utilsSource)) const;
  void leaveOut(Ip6Addr const& server, U64 frameSize, Place place = Place::here(utilsSource)) const;
  void suffixesEnd(U64 frameSize,
                   Place place = Place::here(utilsSource)) const;  ///< of a whole group, without its names
  void leaveOut(String const& suffix, U64 frameSize, Place place = Place::here(utilsSource)) const;
  void cut(String const& suffix, U64 cutAt, U64 frameSize, Place place = Place::here(utilsSource)) const;
  void leaveOutNetworkBoot(U64 frameSize, Place place = Place::here(utilsSource)) const;
  void cutUrl(U64 cutAt) const;  ///< not traced

  Net::FrameWriter out;

 private:
  void trace(std::string_view what, U64 size, Place place) const;

  LeftOut* const leftOut_;
  bool const traced_ = utilsTrace.levels() != 0;
};

/// A message about a draft; its parts are evaluated only when the level is enabled.
#define DRAFT_TRACE(draft, level, ...) \
  do {                                 \
    if ((draft).traced()) [[unlikely]] \
      UTILS_TRACE(level, __VA_ARGS__); \
  } while (false)

}  // namespace RouterAdvt
