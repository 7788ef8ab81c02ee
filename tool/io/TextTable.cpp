#include "tool/io/TextTable.h"

#include <algorithm>

#include "client/base/Text.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kWidest = 200;  // bytes: longer names lose their middle

std::string line(const std::vector<Column>& columns, const std::vector<std::size_t>& widths,
                 const std::vector<std::string>& row) {
  std::string text;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string room(widths[i] - characters(row[i]), ' ');
    text += (i == 0 ? "" : "  ") + (columns[i].number ? room + row[i] : row[i] + room);
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text + "\n";
}

}  // namespace

std::string textTable(const std::vector<Column>& columns, const TextRows& rows) {
  std::vector<std::string> titles;
  std::vector<std::size_t> widths;
  for (const Column& column : columns) {
    titles.push_back(printable(column.title, kWidest));
    widths.push_back(characters(titles.back()));
  }
  TextRows shown = rows;
  for (auto& row : shown) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      row[i] = printable(row[i], kWidest);
      widths[i] = std::max(widths[i], characters(row[i]));
    }
  }
  std::string text = line(columns, widths, titles);
  for (const auto& row : shown) text += line(columns, widths, row);
  return text;
}

}  // namespace tovrdb::tool
