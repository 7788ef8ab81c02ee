// Reading in C++, for bench/python_reading.py to time beside the package, in one process and in turn with it.
#include <chrono>
#include <cstdint>
#include <memory>

#include "client/reading/CellQuery.h"
#include "client/session/Session.h"

namespace {

using namespace tovrdb;
using namespace tovrdb::tool;

// The bare call of the library.
void query(Session& session, std::int32_t type, const Rect& rect) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = type;
  setRect(*record, rect);
  session.require(session.manager().queryData(record.get()));
  const std::unique_ptr<unsigned char[]> cells(record->coefBuffer.data);
}

// What `tovrdb coef get` does.
void find(Session& session, std::int32_t type, const Rect& rect) {
  CellQuery cells;
  cells.type = type;
  cells.rect = rect;
  findCells(session, cells);
}

}  // namespace

// Seconds of one reading; below 0 where it fails. The file has type 0.
extern "C" __attribute__((visibility("default"))) double tovrReadingSeconds(const char* plugin, const char* path,
                                                                            const char* key, std::int32_t type,
                                                                            const std::int32_t* edges, int toolsWay) {
  try {
    Session session = Session::openExisting({plugin}, path, key);
    const Rect rect{edges[0], edges[1], edges[2], edges[3]};
    const auto read = toolsWay != 0 ? find : query;
    read(session, type, rect);  // warm, as the other side is
    const auto start = std::chrono::steady_clock::now();
    read(session, type, rect);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    session.close();
    return seconds.count();
  } catch (const std::exception&) {
    return -1;
  }
}
