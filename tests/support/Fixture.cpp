#include "tests/support/Fixture.h"

#include <fstream>
#include <iterator>
#include <random>

#include "manager/DBManager.h"

extern "C" void pluginit(void* host);

namespace tovrtest {

Bytes pattern(std::size_t size, unsigned int seed) {
  std::minstd_rand random(seed);
  Bytes bytes(size);
  for (auto& byte : bytes) byte = static_cast<unsigned char>(random() >> 8);
  rememberPayload(bytes);
  return bytes;
}

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

std::string printedBy(const std::function<void()>& operation) {
  testing::internal::CaptureStdout();
  operation();
  const std::string printed = testing::internal::GetCapturedStdout();
  expectNoSecrets(printed, "standard output");
  return printed;
}

std::string fieldsOf(const CoefData& r) {
  std::string text;
  for (const int field : {r.id, r.screenid, r.coefid, r.coeftype, r.areaIndex, r.areaid, r.left, r.top, r.right,
                          r.bottom, r.multilayersize}) {
    text += std::to_string(field) + " ";
  }
  return text + r.coeftablename;
}

FolderTest::FolderTest()
    : folder_(std::filesystem::temp_directory_path() / ("tovr-test-" + std::to_string(std::random_device{}()))) {
  if (!std::filesystem::create_directory(folder_)) throw std::runtime_error("not a fresh folder: " + folder_.string());
}

FolderTest::~FolderTest() {
  expectNoSecretsIn(folder_);
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

Bytes FolderTest::contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

void FolderTest::writeFile(const std::string& path, const Bytes& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

void* TestHost::createObject(const char* className, const char* objectName, void* a, void* b, void* c, std::int32_t d) {
  const bool zeros = a == nullptr && b == nullptr && c == nullptr && d == 0;
  calls.push_back(std::string("create ") + className + " " + objectName + (zeros ? "" : " not zero"));
  if (!creates) return nullptr;
  served = true;
  void* object = findObject(objectName);
  calls.pop_back();  // findObject's own line
  return object;
}

void* TestHost::findObject(const char* objectName) {
  calls.push_back(std::string("find ") + objectName);
  if (!served) return nullptr;
  if (std::string(objectName) == "DBOperate") return static_cast<IDBOperate*>(&connection);
  if (std::string(objectName) == "Encryption") return servedEncryption;
  return nullptr;
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
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
  ASSERT_EQ(manager->createTables(), 0);
  if (dbtype != 2) insertInfo(dbtype);
}

void DatabaseTest::insertInfo(int dbtype) {
  DBInfo info;
  info.dbtype = dbtype;
  ASSERT_EQ(manager->insertData(&info), 0);
}

int DatabaseTest::addScreen(const std::string& name, const Rect& rect) {
  ScreenInfoData screen;
  screen.dbid = 1;
  screen.screenname = name;
  setRect(screen, rect);
  return manager->insertData(&screen);
}

void DatabaseTest::run(const std::string& sql) { ASSERT_EQ(host.engine.exec(sql.c_str()), 0) << host.engine.errMsg(); }

std::string DatabaseTest::rows(const std::string& sql) {
  char** cells = nullptr;
  int count = 0;
  int columns = 0;
  EXPECT_EQ(host.engine.get_table(sql.c_str(), &cells, &count, &columns), 0) << host.engine.errMsg();
  std::string text;
  for (int i = columns; i < (count + 1) * columns; ++i) {
    text += cells[i] != nullptr ? cells[i] : "null";
    text += (i + 1) % columns == 0 ? "\n" : "|";
  }
  host.engine.free_table(cells);
  return text;
}

CoefData DatabaseTest::coef(const Rect& rect, Bytes& cells, int cellBytes, const std::string& screen) {
  CoefData record;
  record.coeftype = 1;
  record.screenname = screen;
  setRect(record, rect);
  record.coefBuffer = {cellBytes, cells.data(), static_cast<int>(cells.size())};
  return record;
}

DatabaseTest::Read DatabaseTest::read(const Rect& rect, const std::string& screen, int type) {
  Bytes none;
  CoefData request = coef(rect, none, 0, screen);
  request.coeftype = type;
  const int code = manager->queryData(&request);
  if (code != kOk) return {code, {}};
  const std::unique_ptr<unsigned char[]> cells(request.coefBuffer.data);
  return {code, Bytes(cells.get(), cells.get() + request.coefBuffer.datasize)};
}

int DatabaseTest::insertData(int datatype, Bytes bytes) {
  ConfigData record;
  record.datatype = datatype;
  record.version = "v";
  record.data = bytes.data();
  record.dataSize = static_cast<std::uint32_t>(bytes.size());
  return manager->insertData(&record);
}

DatabaseTest::Read DatabaseTest::readData(int datatype) {
  ConfigData record;
  record.datatype = datatype;
  const int code = manager->queryData(&record);
  const std::unique_ptr<unsigned char[]> bytes(record.data);
  return {code, bytes ? Bytes(bytes.get(), bytes.get() + record.dataSize) : Bytes{}};
}

}  // namespace tovrtest
