#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tool {

/// A place in a file, counted from 1. Line 0: the file as a whole.
struct Place {
  int line = 0;
  int column = 0;

  bool operator==(Place const&) const = default;
  auto operator<=>(Place const&) const = default;
};

/// An error in a file, or a warning about it. Names stand in it as they are.
struct Diagnostic {
  Place place;
  std::string path;  ///< of the attribute, such as `config/intf[Ethernet1]/raLifetime`; empty: the file as a whole
  std::string text;
};

/// `FILE:LINE:COLUMN: PATH: TEXT`, for a `Failure`.
std::string diagnosticText(std::string_view file, Diagnostic const& diagnostic, std::string_view label = {});

/// The same as one printable line, for the console. `label`, such as `warning: `, stands before the path.
std::string diagnosticLine(std::string_view file, Diagnostic const& diagnostic, std::string_view label = {});

/// Sorts by place. Diagnostics of one place keep their order.
void sortByPlace(std::vector<Diagnostic>& diagnostics);

}  // namespace Tool
