#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// A place in a file, counted from 1. Line 0: none in particular.
struct Place {
  int line = 0;
  int column = 0;

  bool operator==(Place const&) const = default;
  auto operator<=>(Place const&) const = default;
};

/// What is wrong, or odd, about one thing in a file.
struct Diagnostic {
  Place place;
  std::string path;  ///< of the attribute, such as `config/intf[Ethernet1]/raLifetime`; empty: the file as a whole
  std::string text;
};

/// `FILE:LINE:COLUMN: PATH: TEXT`; `label`, such as `warning: `, stands before the path.
std::string diagnosticLine(std::string_view file, Diagnostic const& diagnostic, std::string_view label = {});

/// In the order of the file; those of one place stay in the order in which they were found.
void sortByPlace(std::vector<Diagnostic>& diagnostics);

}  // namespace Tool
