// A table of texts in columns of equal width.
#pragma once

#include <string>
#include <vector>

namespace tovrtool {

struct Column {
  std::string title;
  bool number = false;  // numbers stand at the right
};

std::string textTable(const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows);

}  // namespace tovrtool
