#include <programs/common/text/Text.h>
#include <programs/common/text/TextTable.h>

#include <algorithm>

namespace Tool {

TextTable::TextTable(std::vector<std::string> header) { rows_.push_back(std::move(header)); }

void TextTable::add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }

std::string TextTable::text() const {
  std::vector<std::size_t> widths;
  for (auto const& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], displayWidth(row[i]));
  }
  std::string out;
  for (auto const& row : rows_) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) line += padded(row[i], widths[i] + 2);
    line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty()) out += line + '\n';
  }
  return out;
}

}  // namespace Tool
