#pragma once

#include <Ipv6RouterAdvt/RouterAdvt/Config.h>
#include <Ipv6RouterAdvt/RouterAdvt/Status.h>
#include <programs/common/config/ConfigFile.h>
#include <programs/common/linux/ProcFiles.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace Tool {

/// What `serve` serves: the configuration of a file as a live tree, and a status tree with the interfaces of that
/// configuration. Both live as long as this; what changes in them is notified like any other change.
class ServedModel {
 public:
  /// Reads the file, which has to be a regular one. Throws `Failure` with all that is wrong in it, a line each;
  /// warnings go to `err`.
  ServedModel(std::string fileName, std::ostream& err, ProcFiles procFiles = ProcFiles());

  std::vector<Fwk::Ptr<Fwk::Entity>> roots() const { return {config_, status_}; }
  Fwk::Ptr<RouterAdvt::Config> const& config() const { return config_; }
  Fwk::Ptr<RouterAdvt::Status> const& status() const { return status_; }

  enum class Reload {
    unchanged,  ///< the file holds the octets that it held
    applied,    ///< and the trees say what it says
    refused     ///< the trees are as they were
  };
  /// Reads the file again if it is another one than it was, and applies what differs. Warnings, and the errors of a
  /// file that is refused, go to `err`, once for each state of the file. A file that takes more memory than there is
  /// is refused, too.
  Reload reload(std::ostream& err);

  /// Captures the files of some interfaces, the next ones each time, so that no call takes long. True: it was the last
  /// one of a round.
  bool captureSome();

 private:
  void applyInterfaces();

  std::string fileName_;
  FileText read_;  ///< what came of reading the file last
  ProcFiles procFiles_;
  Fwk::Ptr<RouterAdvt::Config> config_;
  Fwk::Ptr<RouterAdvt::Status> status_;
  std::vector<Net::IntfId> toCapture_;  ///< rest of the round, the next one last
};

}  // namespace Tool
