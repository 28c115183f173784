#pragma once

#include <cstddef>
#include <string>

namespace Tool {

/// The octets of a file, or the reason why it was not read.
struct FileText {
  std::string text;
  std::string error;  ///< continues a sentence that begins with the file's name; empty: the file was read
};

/// Reads a file of any kind; `-`: standard input.
FileText readFileText(std::string const& fileName);

/// Reads a regular file of at most `sizeMax` octets. A file of another kind is an error; a FIFO is not waited for.
FileText readRegularFileText(std::string const& fileName, std::size_t sizeMax = std::string::npos);

}  // namespace Tool
