#pragma once

#include <string>
#include <vector>

namespace Tool {

/// Rows of printable text, aligned in columns.
class TextTable {
 public:
  /// `header`: one text per column, empty for a column without a title; without any title there is no header line.
  explicit TextTable(std::vector<std::string> header);

  /// Adds a row with one text per column.
  void add(std::vector<std::string> row);

  /// The lines, with two blanks between columns and none at the end of a line.
  std::string text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace Tool
