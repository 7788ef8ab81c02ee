#include "tool/database/SqlQuery.h"

#include <cstdlib>
#include <memory>

#include "tool/database/EngineError.h"

namespace tovrtool {

std::vector<Row> queryRows(tovr::IDBOperate& connection, const std::string& sql) {
  char** table = nullptr;
  int rows = 0;
  int columns = 0;
  const int code = connection.get_table(sql.c_str(), &table, &rows, &columns);
  const auto release = [&connection](char** texts) { connection.free_table(texts); };
  const std::unique_ptr<char*, decltype(release)> owner(table, release);
  requireOk(connection, code);

  std::vector<Row> found;
  for (int row = 1; row <= rows; ++row) {  // row 0 holds the column names
    Row& texts = found.emplace_back();
    for (int column = 0; column < columns; ++column) {
      const char* text = table[row * columns + column];
      texts.emplace_back(text != nullptr ? text : "");
    }
  }
  return found;
}

std::int64_t queryNumber(tovr::IDBOperate& connection, const std::string& sql) {
  const auto rows = queryRows(connection, sql);
  return rows.empty() ? 0 : std::strtoll(rows[0][0].c_str(), nullptr, 10);
}

std::optional<std::vector<unsigned char>> queryBlob(tovr::IDBOperate& connection, const std::string& sql) {
  requireOk(connection, connection.prepare_v2(sql.c_str(), static_cast<int>(sql.size())));
  std::optional<std::vector<unsigned char>> blob;
  const int step = connection.step();
  if (step == tovr::kStepRow) {
    const auto* bytes = static_cast<const unsigned char*>(connection.column_blob(0));
    blob.emplace(bytes, bytes + connection.column_bytes(0));
  }
  const int code = connection.finalize();  // repeats the error of a failed step
  requireOk(connection, code);
  return blob;
}

}  // namespace tovrtool
