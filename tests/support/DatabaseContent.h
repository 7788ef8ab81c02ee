// What a database file holds, read through the plug-in by SQL.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/PluginHost.h"
#include "tests/support/SecretWatch.h"

namespace tovrtest {

// Runs `sql` in the file through the plug-in; rows as lines of SQL values.
inline std::string sql(const std::string& file, const std::string& statement, const std::string& key = kWordKey) {
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  EXPECT_EQ(host.manager().openDB(file, key), 0);
  host.connection().exec("PRAGMA foreign_keys = OFF");
  char** table = nullptr;
  int rows = 0;
  int columns = 0;
  EXPECT_EQ(host.connection().get_table(statement.c_str(), &table, &rows, &columns), 0) << host.connection().errMsg();
  std::string text;
  for (int i = columns; i < (rows + 1) * columns; ++i) {
    text += std::string(table[i] != nullptr ? table[i] : "") + ((i + 1) % columns == 0 ? "\n" : "|");
  }
  host.connection().free_table(table);
  host.manager().closeDB();
  return text;
}

// Every stored value with its type.
inline std::string everything(const std::string& file, const std::string& key = kWordKey) {
  std::string text = sql(file, "select name, quote(seq) from sqlite_sequence order by name", key);
  for (const char* table : {"DB_Info", "Attach_DB_List", "Screen_Info", "Coef", "Coef_Info", "LumChromData",
                            "LumChromDataInfo", "Data", "DataInfo"}) {
    std::string values;
    const std::string info = sql(file, std::string("pragma table_info(") + table + ")", key);
    for (std::size_t at = 0; at < info.size(); at = info.find('\n', at) + 1) {
      const std::size_t from = info.find('|', at) + 1;
      values += (values.empty() ? "quote(" : ", quote(") + info.substr(from, info.find('|', from) - from) + ")";
    }
    text += table + std::string("\n") + sql(file, "select " + values + " from " + table + " order by id", key);
  }
  return text;
}

}  // namespace tovrtest
