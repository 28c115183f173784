#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// What tests of the tools share.
namespace ToolTest {

/// A folder of its own for a test, which goes with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "routeradvt-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  std::string operator/(std::string const& name) const { return path_ / name; }
  /// Writes a file, and the folders that it stands in.
  std::string write(std::string const& name, std::string const& text) const {
    std::filesystem::path const path = path_ / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
    return path;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace ToolTest
