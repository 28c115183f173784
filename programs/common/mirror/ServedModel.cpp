#include <Ipv6RouterAdvt/RouterAdvt/Factories.h>
#include <RouterPlatform/Mirror/TreeAssign.h>
#include <programs/common/mirror/ServedModel.h>
#include <programs/common/text/Failure.h>
#include <programs/common/text/Text.h>

#include <algorithm>
#include <exception>
#include <ostream>

namespace Tool {

namespace {

// Reading this many directories takes a few milliseconds.
constexpr int interfacesAtOnce = 100;

void tell(std::ostream& err, ConfigFile const& file) {
  for (Diagnostic const& error : file.errors) err << diagnosticLine(file.name, error) << '\n';
  for (Diagnostic const& warning : file.warnings) err << diagnosticLine(file.name, warning, "warning: ") << '\n';
  err.flush();
}

}  // namespace

ServedModel::ServedModel(std::string fileName, std::ostream& err, ProcFiles procFiles)
    : fileName_(std::move(fileName)),
      read_(readRegularFileText(fileName_)),
      procFiles_(std::move(procFiles)),
      status_(RouterAdvt::statusFactory("status")) {
  ConfigFile const file = readConfigText(fileName_, read_);
  failIfWrong(file);
  tell(err, file);
  config_ = file.config;
  applyInterfaces();
}

ServedModel::Reload ServedModel::reload(std::ostream& err) {
  ConfigFile file;
  bool isTold = readAgain_;
  try {
    FileText read = readRegularFileText(fileName_);
    bool const isSame = read.text == read_.text && read.error == read_.error;
    if (isSame && !readAgain_) return Reload::unchanged;
    isTold = isTold && isSame;
    read_ = std::move(read);
    file = readConfigText(fileName_, read_);
    tell(err, file);
    readAgain_ = false;
  } catch (std::exception const& e) {  // memory ran out, perhaps for a moment
    readAgain_ = true;
    if (isTold) return Reload::unchanged;
    err << printable(fileName_ + ": cannot be read: " + e.what()) << std::endl;
    return Reload::refused;
  }
  if (!file) return Reload::refused;
  try {
    Fwk::assignTree(file.config, config_);
    applyInterfaces();
  } catch (std::exception const& e) {
    read_ = {{}, "was not applied"};  // differs from every reading
    err << printable(fileName_ + ": cannot be applied: " + e.what()) << std::endl;
    return Reload::interrupted;
  }
  return Reload::applied;
}

void ServedModel::applyInterfaces() {
  for (auto const& [intfId, intf] : status_->intf())
    if (!config_->intf(intfId)) status_->intfDel(intfId);
  for (auto const& [intfId, intf] : config_->intf()) status_->intfIs(intfId);
}

bool ServedModel::captureSome() {
  if (toCapture_.empty()) {
    for (auto const& [intfId, intf] : status_->intf()) toCapture_.push_back(intfId);
    std::ranges::reverse(toCapture_);
  }
  for (int i = 0; i < interfacesAtOnce && !toCapture_.empty(); ++i) {
    if (auto const intf = status_->intf(toCapture_.back())) procFiles_.capture(*intf);
    toCapture_.pop_back();
  }
  return toCapture_.empty();
}

}  // namespace Tool
