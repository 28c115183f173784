#pragma once

#include <RouterPlatform/Base/BaseTypes.h>
#include <RouterPlatform/Net/EthAddr.h>
#include <RouterPlatform/Net/Ip6Addr.h>

#include <optional>
#include <string>

namespace Tool {

/// The options of the command line that `build` and `send` share.
struct AdvertOptions {
  std::string file;
  std::string intf;
  std::optional<Net::Ip6Addr> src;
  std::optional<Net::Ip6Addr> dst;
  std::optional<Net::EthAddr> srcMac;
  std::optional<Net::EthAddr> dstMac;
  std::optional<Fwk::S32> mtu;
  bool noLifetime = false;
  bool death = false;
  bool virtualRouter = false;

  bool hex = false;
  std::string write;  ///< name of a capture file; empty: none
  std::string trace;  ///< for `Trace::levelsIs`; empty: the levels of the environment variable TRACE
};

/// Resets the trace levels to those of the environment variable TRACE, then applies `settings`.
void traceLevelsAre(std::string const& settings);

}  // namespace Tool
