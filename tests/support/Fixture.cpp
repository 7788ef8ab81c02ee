#include "tests/support/Fixture.h"

#include <iostream>

#include "manager/DBManager.h"

namespace tovrtest {

std::string printedBy(const std::function<void()>& operation) {
  testing::internal::CaptureStdout();
  operation();
  const std::string printed = testing::internal::GetCapturedStdout();
  expectNoSecrets(printed, "standard output");
  return printed;
}

void quietly(const std::function<void()>& operation) {
  const std::string printed = printedBy(operation);
  if (testing::Test::HasFailure()) std::cout << printed.substr(printed.rfind('\n', printed.find(": Failure")));
}

ManagerTest::ManagerTest() {
  pluginit(&host);
  manager = std::make_unique<DBManager>();
}

ManagerTest::~ManagerTest() {
  manager.reset();
  pluginit(nullptr);
}

void ManagerTest::serveEncryption(IEncryption& service) {
  host.servedEncryption = &service;
  manager = std::make_unique<DBManager>();
}

void DatabaseTest::createFile(int dbtype) {
  createFileWithoutType();
  insertInfo(dbtype);
}

void DatabaseTest::createFileWithoutType() {
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
  ASSERT_EQ(manager->createTables(), kOk);
}

void DatabaseTest::insertInfo(int dbtype) {
  DBInfo info;
  info.dbtype = dbtype;
  ASSERT_EQ(manager->insertData(&info), kOk);
}

int DatabaseTest::addScreen(const std::string& name, const Rect& rect) {
  ScreenInfoData screen;
  screen.dbid = 1;
  screen.screenname = name;
  setRect(screen, rect);
  return manager->insertData(&screen);
}

CoefData DatabaseTest::coef(const Rect& rect, Bytes& cells, int cellBytes, const std::string& screen) {
  CoefData record;
  record.coeftype = 1;
  record.screenname = screen;
  setRect(record, rect);
  record.coefBuffer = {cellBytes, cells.data(), static_cast<int>(cells.size())};
  return record;
}

DatabaseTest::Answer DatabaseTest::query(const Rect& rect, const std::string& screen, int type) {
  Bytes none;
  CoefData request = coef(rect, none, 0, screen);
  request.coeftype = type;
  const int code = manager->queryData(&request);
  if (code != kOk) return {code, {}};
  const std::unique_ptr<unsigned char[]> cells(request.coefBuffer.data);
  return {code, Bytes(cells.get(), cells.get() + request.coefBuffer.datasize)};
}

Bytes DatabaseTest::cellsAt(const Rect& rect, const std::string& screen) {
  const Answer answer = query(rect, screen);
  EXPECT_EQ(answer.code, kOk) << "query of " << testing::PrintToString(rect) << " on screen '" << screen << "'";
  return answer.bytes;
}

std::vector<CoefData> DatabaseTest::areas() {
  CoefDataResult list;
  EXPECT_EQ(manager->queryData(&list), kOk);
  return list.coefs;
}

std::vector<ScreenInfoData> DatabaseTest::screens() {
  ScreenInfoDataResult list;
  EXPECT_EQ(manager->queryData(&list), kOk);
  return list.screens;
}

int DatabaseTest::insertData(int datatype, Bytes bytes) {
  ConfigData record;
  record.datatype = datatype;
  record.version = "v";
  record.data = bytes.data();
  record.dataSize = static_cast<std::uint32_t>(bytes.size());
  return manager->insertData(&record);
}

DatabaseTest::Answer DatabaseTest::readData(int datatype) {
  ConfigData record;
  record.datatype = datatype;
  const int code = manager->queryData(&record);
  const std::unique_ptr<unsigned char[]> bytes(record.data);
  return {code, bytes ? Bytes(bytes.get(), bytes.get() + record.dataSize) : Bytes{}};
}

void DatabaseTest::run(const std::string& sql) {
  ASSERT_EQ(host.engine.exec(sql.c_str()), kOk) << host.engine.errMsg();
}

DatabaseTest::Rows DatabaseTest::rows(const std::string& sql) {
  char** cells = nullptr;
  int count = 0;
  int columns = 0;
  EXPECT_EQ(host.engine.get_table(sql.c_str(), &cells, &count, &columns), kOk) << host.engine.errMsg();
  Rows found(static_cast<std::size_t>(count));
  for (int i = 0; i < count * columns; ++i) {
    const char* cell = cells[i + columns];
    found[static_cast<std::size_t>(i / columns)].emplace_back(cell != nullptr ? cell : "null");
  }
  host.engine.free_table(cells);
  return found;
}

std::string DatabaseTest::value(const std::string& sql) { return rows(sql).at(0).at(0); }

int DatabaseTest::number(const std::string& sql) { return std::stoi(value(sql)); }

void ScreenFileTest::SetUp() {
  createFile(kByRectangle);
  ASSERT_EQ(addScreen("", {0, 0, 99, 99}), kOk);
}

}  // namespace tovrtest
