// A table of texts in columns of equal width.
#pragma once

#include <string>
#include <vector>

namespace tovrdb::tool {

struct Column {
  std::string title;
  bool number = false;  // aligned right
};

using TextRows = std::vector<std::vector<std::string>>;

// A line of titles, then one per row; texts as `printable` shows them. REQUIRES: every row has a text for each column.
std::string textTable(const std::vector<Column>& columns, const TextRows& rows);

}  // namespace tovrdb::tool
