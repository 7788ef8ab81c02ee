// The main sequence of a host: load the plug-in, make a database file, store a block of coefficient cells and read a
// smaller rectangle back.
//
// Usage: store_and_read PLUGIN DATABASE   (DATABASE must not exist yet)
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <vector>

#include "host/PluginHost.h"

namespace {

using tovrhost::PluginHost;

constexpr std::size_t kCellBytes = 18;  // a 3x3 matrix of 16-bit numbers

template <class Record>
void setRectangle(Record& record, int left, int top, int right, int bottom) {
  record.left = left;
  record.top = top;
  record.right = right;
  record.bottom = bottom;
}

// A new file knows its type and one screen before it can take coefficients.
void describeFile(PluginHost& host) {
  auto info = host.makeRecord<tovr::DBInfo>();
  info->dbname = "example";
  info->dbtype = 0;  // areas find their screen by rectangle
  info->datastructversion = info->softwareversion = info->dbversion = "1";
  info->softwaretype = "example";
  host.require(host.manager().insertData(info.get()), "describe the file");

  auto screen = host.makeRecord<tovr::ScreenInfoData>();
  screen->dbid = 1;  // the row of "Attach_DB_List" that the insert above made
  screen->screenname = "left wall";
  setRectangle(*screen, 0, 0, 63, 31);
  host.require(host.manager().insertData(screen.get()), "add the screen");
}

void storeBlock(PluginHost& host, std::vector<unsigned char>& cells) {
  auto block = host.makeRecord<tovr::CoefData>();
  block->coeftype = 1;
  setRectangle(*block, 0, 0, 63, 31);
  block->coefBuffer.databitwidth = int{kCellBytes};
  block->coefBuffer.data = cells.data();  // stays ours
  block->coefBuffer.datasize = static_cast<int>(cells.size());
  host.require(host.manager().insertData(block.get()), "store the block");
}

// The cells of a smaller rectangle. The buffer that the query leaves in the record is ours to delete[].
bool readBack(PluginHost& host, const std::vector<unsigned char>& cells) {
  auto request = host.makeRecord<tovr::CoefData>();
  request->coeftype = 1;
  setRectangle(*request, 8, 4, 23, 11);  // both edges inclusive: 16 x 8 cells
  host.require(host.manager().queryData(request.get()), "read the rectangle");
  const std::unique_ptr<unsigned char[]> region(request->coefBuffer.data);
  std::printf("read %d bytes of %d-byte cells\n", request->coefBuffer.datasize, request->coefBuffer.databitwidth);
  for (std::size_t row = 0; row < 8; ++row) {
    const unsigned char* expected = cells.data() + ((row + 4) * 64 + 8) * kCellBytes;
    if (std::memcmp(region.get() + row * 16 * kCellBytes, expected, kCellBytes * 16) != 0) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s PLUGIN DATABASE\n", argv[0]);
    return 2;
  }
  try {
    PluginHost host(argv[1]);  // pluginfo, pluginit
    std::printf("%s %s\n", host.info().name, host.info().version);
    host.openDB(argv[2], "a key of your own");
    host.require(host.manager().createTables(), "create the tables");
    describeFile(host);

    std::vector<unsigned char> cells(kCellBytes * 64 * 32);
    for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = static_cast<unsigned char>(i * 131 >> 3);
    storeBlock(host, cells);
    const bool same = readBack(host, cells);
    std::printf("%s\n", same ? "the rectangle is exact to the byte" : "the rectangle DIFFERS");
    host.require(host.manager().closeDB(), "close the file");
    return same ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
