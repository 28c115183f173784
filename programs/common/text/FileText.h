#pragma once

#include <cstddef>
#include <string>

namespace Tool {

/// The octets of a file, or why there are none.
struct FileText {
  std::string text;
  std::string error;  ///< empty: it was read
};

/// `-`: standard input.
FileText readFileText(std::string const& fileName);

/// Of a regular file; anything else is an error, and is not waited for. So is one of more octets than that.
FileText readRegularFileText(std::string const& fileName, std::size_t sizeMax = std::string::npos);

}  // namespace Tool
