#include "client/storing/BlockRows.h"

#include <fmt/core.h>

#include <algorithm>

#include "client/base/Error.h"
#include "client/contents/AreaNames.h"
#include "client/contents/StoredBlob.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

constexpr char kInsertBlock[] = "insert into Coef(data, databitwidth, version) values (?, ?, ?)";
constexpr char kUpdateBlock[] = "update Coef set data = ?, databitwidth = ? where id = ?";
constexpr char kUpdateVersion[] = "update Coef set version = ? where id = ?";
constexpr char kUpdateBlob[] = "update Coef set data = ? where id = ?";
// A new block has no layers.
constexpr char kInsertArea[] =
    "insert into Coef_Info(screenid, coeftype, areaid, top, left, bottom, right, coefid, coeftablename,"
    " multilayersize, multilayerlist, ctime, mtime) values (?, ?, ?, ?, ?, ?, ?, ?, 'Coef', 0, null,"
    " datetime('now', 'localtime'), datetime('now', 'localtime'))";
constexpr char kUpdateArea[] =
    "update Coef_Info set screenid = ?, coeftype = ?, areaid = ?, top = ?, left = ?, bottom = ?, right = ?,"
    " coeftablename = 'Coef', multilayersize = 0, multilayerlist = null, mtime = datetime('now', 'localtime')"
    " where id = ?";
constexpr char kTouchArea[] = "update Coef_Info set mtime = datetime('now', 'localtime') where id = ?";
constexpr char kDeleteArea[] = "delete from Coef_Info where id = ?";
constexpr char kDeleteBlock[] =
    "delete from Coef where id = ?1 and not exists (select 1 from Coef_Info where coefid = ?1)";

// A statement with its values, which are borrowed until it has run.
class Write {
 public:
  template <std::size_t kSize>
  Write(Session& session, const char (&sql)[kSize]) : connection_(session.connection()) {
    requireEngine(connection_, connection_.prepare_v2(sql, static_cast<int>(kSize - 1)));
  }
  Write& number(std::int64_t value) { return bound(connection_.bind_int64(++index_, value)); }
  Write& text(const std::string& value) {
    return bound(connection_.bind_text(++index_, value.data(), static_cast<int>(value.size()), nullptr));
  }
  Write& blob(const Bytes& value) {
    return bound(connection_.bind_blob(++index_, value.data(), static_cast<int>(value.size()), nullptr));
  }
  void run() {
    connection_.step();
    requireEngine(connection_, connection_.finalize());  // repeats the error of a failed step
  }

 private:
  Write& bound(int code) {
    requireEngine(connection_, code);
    return *this;
  }

  tovr::IDBOperate& connection_;
  int index_ = 0;
};

Bytes enciphered(Session& session, const CellBlock& block) {
  return encipherBlob(session.host().encryption(), block.bytes.get(), block.size());
}

// The first seven parameters of a row of areas.
Write& bindPlace(Write& write, std::int64_t screenId, const BlockContent& content) {
  const Rect& rect = content.place.rect;
  return write.number(screenId)
      .number(content.place.type)
      .number(content.number)
      .number(rect.top)
      .number(rect.left)
      .number(rect.bottom)
      .number(rect.right);
}

void rewriteVersion(Session& session, const StoredArea& area, const std::string& version) {
  if (version != area.version) Write(session, kUpdateVersion).text(version).number(area.blockId).run();
}

// `payload` are the area's cells from its row `firstRow` on.
void put(const CellBlock& cells, const StoredArea& area, std::int32_t firstRow, unsigned char* payload) {
  const std::int64_t stride = columnsOf(area.rect) * area.cellBytes;
  const std::int64_t start = (std::int64_t{cells.rect.left} - area.rect.left) * area.cellBytes;
  for (std::int64_t y = cells.rect.top; y <= cells.rect.bottom; ++y) {
    const unsigned char* row = cells.at(cells.rect.left, static_cast<std::int32_t>(y));
    std::copy_n(row, cells.rowBytes(), payload + (y - firstRow) * stride + start);
  }
}

}  // namespace

std::int64_t addAreaRows(Session& session, std::int64_t screenId, const BlockContent& content) {
  const CellBlock block = content.cells();
  const Bytes blob = enciphered(session, block);
  Write(session, kInsertBlock).blob(blob).number(block.cellBytes).text(content.version).run();
  const std::int64_t key = queryNumber(session.connection(), "select last_insert_rowid()");
  Write area(session, kInsertArea);
  bindPlace(area, screenId, content).number(key).run();
  return key;
}

void rewriteAreaRows(Session& session, const StoredArea& area, const BlockContent& content) {
  const CellBlock block = content.cells();
  Write update(session, kUpdateArea);
  bindPlace(update, content.screenId, content).number(area.id).run();
  const Bytes blob = enciphered(session, block);
  Write(session, kUpdateBlock).blob(blob).number(block.cellBytes).number(area.blockId).run();
  rewriteVersion(session, area, content.version);
}

std::int64_t updateByLibrary(Session& session, const StoredArea& area, const BlockContent& content) {
  const CellBlock block = content.cells();
  const auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = content.place.type;
  record->screenname = content.place.screen;
  setRect(*record, content.place.rect);
  record->areaid = content.number;
  record->coefBuffer.databitwidth = block.cellBytes;
  record->coefBuffer.data = block.bytes.get();
  record->coefBuffer.datasize = static_cast<std::int32_t>(block.size());
  session.require(session.manager().updateData(record.get()), "asked for " + toText(content.place.rect));
  rewriteVersion(session, area, content.version);
  return record->coefid;
}

// The areas go first: for each block the engine looks through those that are left.
void deleteAreaRows(Session& session, const std::vector<StoredArea>& areas) {
  for (const StoredArea& area : areas) Write(session, kDeleteArea).number(area.id).run();
  for (const StoredArea& area : areas) Write(session, kDeleteBlock).number(area.blockId).run();
}

void patchArea(Session& session, const StoredArea& area, const std::vector<Patch>& patches) {
  auto blob = queryPayload(session, kBlockTable, area.blockId);
  if (!blob) throw statusError(tovr::kCipherFailed, fmt::format("the block of {} is missing", areaText(area)));
  std::int32_t firstRow = area.rect.bottom;
  for (const Patch& patch : patches) firstRow = std::min(firstRow, patch.rect.top);
  tovr::IEncryption& encryption = session.host().encryption();
  requireFilled(payloadLengthOf(encryption, *blob), area.rect, area.cellBytes);
  const auto skipped =
      static_cast<std::size_t>((std::int64_t{firstRow} - area.rect.top) * columnsOf(area.rect) * area.cellBytes);
  changePayload(encryption, *blob, skipped, [&](unsigned char* payload) {
    for (const Patch& patch : patches) put(patch.cells(), area, firstRow, payload);
  });
  Write(session, kUpdateBlob).blob(*blob).number(area.blockId).run();
  Write(session, kTouchArea).number(area.id).run();
}

}  // namespace tovrdb
