#include <programs/common/linux/ProcFiles.h>
#include <programs/common/text/FileText.h>

#include <filesystem>
#include <map>
#include <optional>

namespace Tool {

namespace {

using RouterAdvt::ProcFileDirDataSet;
using Files = std::map<std::string, std::string>;

// Octets. The files of these directories have a few lines.
constexpr std::size_t fileSizeMax = 65536;

struct Directory {
  bool present = false;
  std::optional<Files>
      files;  ///< by name; nothing when the directory could not be read, for example for lack of descriptors
};

Directory readDirectory(std::filesystem::path const& directory) {
  std::error_code error;
  Files files;
  std::filesystem::directory_iterator at(directory, error);
  while (!error && at != std::filesystem::directory_iterator()) {
    if (FileText read = readRegularFileText(at->path(), fileSizeMax); read.error.empty())
      files.emplace(at->path().filename(), std::move(read.text));
    at.increment(error);
  }
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) return {};
  return {true, error ? std::nullopt : std::optional(std::move(files))};
}

void store(ProcFileDirDataSet& set, Files const& files) {
  for (auto const& [name, contents] : set.fileData())
    if (!files.contains(name)) set.fileDataDel(name);
  for (auto const& [name, contents] : files) set.fileDataIs(name, contents);
}

/// Whether an interface can have that name. "all" and "default" are directories of the kernel, not interfaces.
bool mayBeInterface(std::string_view name) {
  for (std::string_view const other : {"", ".", "..", "all", "default"})
    if (name == other) return false;
  return name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

}  // namespace

void ProcFiles::capture(RouterAdvt::IntfStatus& status) const {
  std::string const name = status.intfId().toString();
  auto const filesOf = [&](std::string const& directory) {
    return mayBeInterface(name) ? readDirectory(directory) : Directory();
  };
  std::string const cfg = root_ + "/conf/" + name, nbr = root_ + "/neigh/" + name;
  auto const setName = [](std::string const& directory) {
    return RouterAdvt::Name(std::string_view(directory).substr(0, RouterAdvt::Name::maxSize));
  };
  if (auto const [present, files] = filesOf(cfg); files)
    store(*status.cfgProcFileDataIs(setName(cfg)), *files);
  else if (!present)
    status.cfgProcFileDataDel();
  if (auto const [present, files] = filesOf(nbr); files)
    store(*status.nbrProcFileDataIs(setName(nbr)), *files);
  else if (!present)
    status.nbrProcFileDataDel();
}

}  // namespace Tool
