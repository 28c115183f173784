#pragma once

#include <string>
#include <vector>

namespace Tool {

/// Rows of text in columns, each as wide as it has to be.
class Table {
 public:
  /// `header`: empty texts for columns without one; no row of its own when all are.
  explicit Table(std::vector<std::string> header);

  /// A row with as many texts as there are columns.
  void add(std::vector<std::string> row);

  /// Two blanks between the columns, none at the end of a line.
  std::string text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace Tool
