#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/linux/ProcFiles.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace Tool {

/// The trees that `serve` serves: the configuration of a file as a live tree, and a status tree with the interfaces of
/// that configuration. Both live as long as this object; their changes are notified as ever.
class ServedModel {
 public:
  /// Reads the file, which must be a regular one. Throws `Failure` with all errors in it, one per line; warnings go to
  /// `err`.
  ServedModel(std::string fileName, std::ostream& err, ProcFiles procFiles = ProcFiles());

  std::vector<Fwk::Ptr<Fwk::Entity>> roots() const { return {config_, status_}; }
  Fwk::Ptr<RouterAdvt::Config> const& config() const { return config_; }
  Fwk::Ptr<RouterAdvt::Status> const& status() const { return status_; }

  enum class Reload {
    unchanged,   ///< the file has the same octets as before, and all there is to tell of it is told
    applied,     ///< the trees equal the file
    refused,     ///< the trees stay as they were
    interrupted  ///< the trees equal the file in part; the next call applies it again
  };
  /// Reads the file again if it has changed, and applies the differences. Warnings, and the errors of a
  /// file that is refused, go to `err`, once for each state of the file. A file that takes more memory than there is
  /// is refused, too, and the next call reads it again. Memory that runs out while differences are applied, or a value
  /// that `assignTree` refuses, interrupts the call, and the reason goes to `err`. Throws `std::bad_alloc` when there
  /// is no memory for a message; the next call reads the file again.
  Reload reload(std::ostream& err);

  /// Captures the files of the next few interfaces, so that no call takes long. True: this call ended a round.
  bool captureSome();

 private:
  void applyInterfaces();

  std::string fileName_;
  FileText read_;           ///< result of the last reading
  bool readAgain_ = false;  ///< memory ran out while the file was read
  ProcFiles procFiles_;
  Fwk::Ptr<RouterAdvt::Config> config_;
  Fwk::Ptr<RouterAdvt::Status> status_;
  std::vector<Net::IntfId> toCapture_;  ///< rest of the round, the next one last
};

}  // namespace Tool
