#include <programs/common/linux/ProcFiles.h>
#include <programs/common/text/FileText.h>

#include <filesystem>
#include <map>
#include <optional>

namespace Tool {

namespace {

using RouterAdvt::ProcFileDirDataSet;
using Files = std::map<std::string, std::string>;

// Such files have a line or a few; what is longer is none of them.
constexpr std::size_t greatestFile = 65536;

struct Directory {
  bool present = false;
  std::optional<Files> files;  ///< by name; none when it could not be read, such as for want of a file descriptor
};

Directory readDirectory(std::filesystem::path const& directory) {
  std::error_code error;
  Files files;
  std::filesystem::directory_iterator at(directory, error);
  while (!error && at != std::filesystem::directory_iterator()) {
    if (FileText read = readRegularFileText(at->path(), greatestFile); read.error.empty())
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

/// Whether the kernel may have an interface of that name, rather than a directory of that name: two are there for all
/// interfaces together.
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
