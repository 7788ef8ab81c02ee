#include "Workbench.h"

#include <random>
#include <stdexcept>

namespace tovrbench {
namespace {

void require(int code, const char* what) {
  if (code != 0) throw std::runtime_error(std::string(what) + ": code " + std::to_string(code));
}

template <class Record>
void place(Record& record, const Rectangle& rectangle) {
  record.left = rectangle.left;
  record.top = rectangle.top;
  record.right = rectangle.right;
  record.bottom = rectangle.bottom;
}

}  // namespace

std::vector<unsigned char> noise(std::size_t size) {
  std::mt19937_64 generator(1);
  std::vector<unsigned char> bytes(size);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(generator());
  return bytes;
}

Scratch::Scratch()
    : folder_(std::filesystem::temp_directory_path() / ("tovrbench-" + std::to_string(std::random_device()()))) {
  std::filesystem::create_directory(folder_);
}

Scratch::~Scratch() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

StoreUnderTest::StoreUnderTest(const std::string& plugin, const std::string& path, const Rectangle& screen)
    : host_(plugin) {
  require(host_.manager().openDB(path, kKey), "open");
  require(host_.manager().createTables(), "create");
  const auto info = host_.makeRecord<tovr::DBInfo>();
  require(host_.manager().insertData(info.get()), "describe");
  const auto record = host_.makeRecord<tovr::ScreenInfoData>();
  record->dbid = 1;
  place(*record, screen);
  require(host_.manager().insertData(record.get()), "screen");
}

void StoreUnderTest::insert(const Rectangle& rectangle, std::vector<unsigned char>& cells) {
  const auto record = host_.makeRecord<tovr::CoefData>();
  record->coeftype = 1;
  record->areaid = areas_++;
  place(*record, rectangle);
  record->coefBuffer.databitwidth = kCellBytes;
  record->coefBuffer.data = cells.data();
  record->coefBuffer.datasize = static_cast<int>(cells.size());
  require(host_.manager().insertData(record.get()), "insert");
}

std::unique_ptr<unsigned char[]> StoreUnderTest::query(const Rectangle& rectangle) {
  const auto record = host_.makeRecord<tovr::CoefData>();
  record->coeftype = 1;
  place(*record, rectangle);
  require(host_.manager().queryData(record.get()), "query");
  return std::unique_ptr<unsigned char[]>(record->coefBuffer.data);
}

void StoreUnderTest::readLists() {
  require(host_.manager().queryData(host_.makeRecord<tovr::ScreenInfoDataResult>().get()), "screens");
  require(host_.manager().queryData(host_.makeRecord<tovr::CoefDataResult>().get()), "areas");
}

}  // namespace tovrbench
