#include "fuzz/HostileSql.h"

#include "storage/BlobCipher.h"

namespace tovrfuzz {
namespace {

using Statements = std::vector<std::string>;

// What a column holds in an honest file.
enum class Kind { kKey, kSmall, kFirstEdge, kLastEdge, kText, kTime, kBlob, kList };

struct Column {
  const char* name;
  Kind kind;
};

struct Table {
  const char* name;
  std::vector<Column> columns;  // behind "id"
};

const std::vector<Table>& tables() {
  const Column top{"top", Kind::kFirstEdge};
  const Column left{"left", Kind::kFirstEdge};
  const Column bottom{"bottom", Kind::kLastEdge};
  const Column right{"right", Kind::kLastEdge};
  const Column data{"data", Kind::kBlob};
  const Column version{"version", Kind::kText};
  const Column screenid{"screenid", Kind::kKey};
  const Column dataid{"dataid", Kind::kKey};
  const Column datatype{"datatype", Kind::kSmall};
  const Column ctime{"ctime", Kind::kTime};
  const Column mtime{"mtime", Kind::kTime};
  const auto text = [](const char* name) { return Column{name, Kind::kText}; };
  const auto key = [](const char* name) { return Column{name, Kind::kKey}; };
  const auto small = [](const char* name) { return Column{name, Kind::kSmall}; };
  static const std::vector<Table> all = {
      {"DB_Info",
       {text("dbname"), small("dbtype"), text("datastructversion"), text("softwareversion"), text("softwaretype"),
        text("dbversion"), ctime, mtime}},
      {"Attach_DB_List", {text("dbname"), ctime, mtime}},
      {"Screen_Info", {key("dbid"), text("screenname"), top, left, bottom, right, ctime, mtime}},
      {"Coef", {data, small("databitwidth"), version}},
      {"Coef_Info",
       {screenid,
        key("coefid"),
        text("coeftablename"),
        small("coeftype"),
        small("areaid"),
        top,
        left,
        bottom,
        right,
        small("multilayersize"),
        {"multilayerlist", Kind::kList},
        ctime,
        mtime}},
      {"LumChromData", {data, version}},
      {"LumChromDataInfo", {screenid, dataid, text("datatablename"), datatype, top, left, bottom, right, ctime, mtime}},
      {"Data", {data, version}},
      {"DataInfo", {screenid, dataid, datatype, ctime, mtime}},
  };
  return all;
}

std::string hex(const Bytes& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "x'";
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text + "'";
}

std::string wildValue(Choices& choices) {
  constexpr const char* kValues[] = {"NULL",
                                     "''",
                                     "'%n%s%x%%'",
                                     "'12abc'",
                                     "' 7'",
                                     "'99999999999999999999'",
                                     "'main'",
                                     "0",
                                     "-1",
                                     "2147483647",
                                     "2147483648",
                                     "-2147483648",
                                     "-2147483649",
                                     "4294967296",
                                     "9223372036854775807",
                                     "-9223372036854775808",
                                     "1e308",
                                     "9e999",
                                     "-0.5",
                                     "x''",
                                     "x'25'",
                                     "x'000102030405'",
                                     "zeroblob(5000)",
                                     "char(0) || 'a'",
                                     "char(0xD800, 37, 110)"};
  return choices.flag() ? std::to_string(choices.number()) : choices.oneOf(kValues);
}

// A payload as it is stored; now and then shorter, longer, or with another bit.
std::string blobValue(Choices& choices, tovr::IEncryption& encryption) {
  const Bytes payload = noise(choices.below(400), 5);
  Bytes blob;
  tovr::encipherPayload(encryption, payload.data(), static_cast<std::uint32_t>(payload.size()), blob);
  switch (choices.below(12)) {
    case 0:
      blob.resize(choices.below(blob.size() + 16));
      break;
    case 1:
      blob[choices.below(blob.size())] ^= 1;
      break;
    case 2:
      return hex(choices.take(choices.below(24)));
    default:
      break;
  }
  return hex(blob);
}

std::string value(Kind kind, Choices& choices, tovr::IEncryption& encryption) {
  constexpr const char* kTexts[] = {"'main'", "'left'", "''", "'%d%n'", "'a''b'"};
  constexpr unsigned char kWild = 232;
  const unsigned char choice = choices.byte();
  if (choice >= kWild) return wildValue(choices);
  switch (kind) {
    case Kind::kKey:
      return std::to_string(1 + choice % 3);
    case Kind::kSmall:
      return std::to_string(choice % 3);
    case Kind::kFirstEdge:
      return std::to_string(choice % 4);
    case Kind::kLastEdge:
      return std::to_string(4 + choice % 8);
    case Kind::kText:
      return kTexts[choice % std::size(kTexts)];
    case Kind::kTime:
      return "'2026-01-01 00:00:00'";
    case Kind::kBlob:
      return blobValue(choices, encryption);
    case Kind::kList:
      return hex(noise(choice % 20, 9));
  }
  return "NULL";
}

// All columns in parentheses, the key first; quoted, for "left" and "right" are words of SQL.
std::string columnList(const Table& table, std::size_t count) {
  std::string names = "(id";
  for (std::size_t i = 0; i < count; ++i) names += std::string(", \"") + table.columns[i].name + "\"";
  return names + ")";
}

std::string rowOf(const Table& table, std::size_t count, Choices& choices, tovr::IEncryption& encryption) {
  std::string row = choices.byte() < 200 ? "NULL" : wildValue(choices);  // the next key, or any
  for (std::size_t i = 0; i < count; ++i) row += ", " + value(table.columns[i].kind, choices, encryption);
  return row;
}

void addRows(const Table& table, std::size_t columns, Choices& choices, tovr::IEncryption& encryption,
             Statements& statements) {
  for (std::size_t rows = choices.below(4); rows > 0; --rows) {
    statements.push_back("insert into " + std::string(table.name) + columnList(table, columns) + " values (" +
                         rowOf(table, columns, choices, encryption) + ")");
  }
}

void replaceByTable(const Table& table, const std::string& key, std::size_t columns, const std::string& end,
                    Statements& statements) {
  std::string definition = columnList(table, columns);
  definition.insert(3, key);  // behind "(id"
  statements.push_back("drop table " + std::string(table.name));
  statements.push_back("create table " + std::string(table.name) + definition + end);
}

void replaceByView(const Table& table, const std::string& select, Statements& statements) {
  statements.push_back("drop table " + std::string(table.name));
  statements.push_back("create view " + std::string(table.name) + columnList(table, table.columns.size()) + " as " +
                       select);
}

void fillTable(const Table& table, Choices& choices, tovr::IEncryption& encryption, Statements& statements) {
  const std::size_t all = table.columns.size();
  std::size_t columns = all;
  switch (choices.below(16)) {
    case 9:
      replaceByTable(table, " integer primary key autoincrement", all, "", statements);  // takes any type, and NULL
      break;
    case 10:
      replaceByTable(table, "", all, "", statements);  // and any key, more than once
      break;
    case 11:
      columns = choices.below(all);
      replaceByTable(table, " integer primary key", columns, "", statements);
      break;
    case 12:
      replaceByTable(table, " integer primary key", all, " without rowid", statements);
      break;
    case 13:
      return replaceByView(table,
                           "select " + rowOf(table, all, choices, encryption) + " union all select " +
                               rowOf(table, all, choices, encryption),
                           statements);
    case 14:  // perhaps a view of this one
      return replaceByView(table, std::string("select * from ") + tables()[choices.below(tables().size())].name,
                           statements);
    case 15:
      return statements.push_back("drop table " + std::string(table.name));
    default:
      break;
  }
  addRows(table, columns, choices, encryption, statements);
}

void addTrigger(Choices& choices, Statements& statements) {
  constexpr const char* kTimes[] = {"before", "after", "instead of"};
  constexpr const char* kEvents[] = {"insert", "update", "delete"};
  constexpr const char* kActions[] = {"select raise(abort, '%n%s%n')",
                                      "select raise(fail, '%')",
                                      "select raise(rollback, '100%% %x')",
                                      "select raise(ignore)",
                                      "delete from sqlite_sequence",
                                      "update sqlite_sequence set seq = 9223372036854775807",
                                      "delete from Coef",
                                      "delete from Coef_Info",
                                      "update Coef set data = zeroblob(3)",
                                      "update Screen_Info set screenname = NULL"};
  const char* table = tables()[choices.below(tables().size())].name;
  const std::string time = choices.oneOf(kTimes);
  const std::string event = choices.oneOf(kEvents);
  statements.push_back("create trigger t" + std::to_string(statements.size()) + " " + time + " " + event + " on " +
                       table + " begin " + choices.oneOf(kActions) + "; end");
}

void changeKeys(Choices& choices, Statements& statements) {
  const std::string table = tables()[choices.below(tables().size())].name;
  const std::string last = wildValue(choices);
  switch (choices.below(4)) {
    case 0:
      return statements.push_back("delete from sqlite_sequence");
    case 1:
      return statements.push_back("insert into sqlite_sequence values ('" + table + "', " + last + ")");
    default:
      return statements.push_back("update sqlite_sequence set seq = " + last + " where name = '" + table + "'");
  }
}

}  // namespace

std::vector<std::string> hostileSql(Choices& choices, tovr::IEncryption& encryption) {
  Statements statements;
  for (const Table& table : tables()) fillTable(table, choices, encryption, statements);
  for (std::size_t count = choices.below(3); count > 0; --count) addTrigger(choices, statements);
  for (std::size_t count = choices.below(3); count > 0; --count) changeKeys(choices, statements);
  return statements;
}

}  // namespace tovrfuzz
