#include "tests/support/Fixture.h"

#include "manager/DBManager.h"

namespace tovrtest {
namespace {

Rect rectFrom(const std::vector<std::string>& row, std::size_t column) {
  return {std::stoi(row[column]), std::stoi(row[column + 1]), std::stoi(row[column + 2]), std::stoi(row[column + 3])};
}

}  // namespace

std::string printedBy(const std::function<void()>& operation) {
  testing::internal::CaptureStdout();
  operation();
  const std::string printed = testing::internal::GetCapturedStdout();
  expectNoSecrets(printed, "standard output");
  return printed;
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

std::vector<CoefData> DatabaseTest::storedAreas() {
  std::vector<CoefData> areas;
  for (const auto& row : rows("select id, screenid, coefid, coeftype, areaid, left, top, right, bottom, "
                              "multilayersize, coeftablename from Coef_Info order by id")) {
    CoefData& area = areas.emplace_back();
    area.id = std::stoi(row[0]);
    area.screenid = std::stoi(row[1]);
    area.coefid = std::stoi(row[2]);
    area.coeftype = std::stoi(row[3]);
    area.areaid = std::stoi(row[4]);
    setRect(area, rectFrom(row, 5));
    area.multilayersize = std::stoi(row[9]);
    area.coeftablename = row[10];
  }
  return areas;
}

std::vector<ScreenInfoData> DatabaseTest::storedScreens() {
  std::vector<ScreenInfoData> screens;
  for (const auto& row : rows("select id, dbid, left, top, right, bottom, screenname from Screen_Info order by id")) {
    ScreenInfoData& screen = screens.emplace_back();
    screen.id = std::stoi(row[0]);
    screen.dbid = std::stoi(row[1]);
    setRect(screen, rectFrom(row, 2));
    screen.screenname = row[6];
  }
  return screens;
}

}  // namespace tovrtest
