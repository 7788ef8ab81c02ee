#include "client/storing/BlockRows.h"

#include <fmt/core.h>

#include <utility>

#include "client/contents/StoredBlob.h"

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

// One statement with its values, which are borrowed until it has run.
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

std::int64_t lastKey(Session& session) { return queryNumber(session.connection(), "select last_insert_rowid()"); }

// The first seven parameters of a row of areas.
Write& place(Write& write, const AreaRow& row, const Rect& rect) {
  return write.number(row.screenId)
      .number(row.type)
      .number(row.number)
      .number(rect.top)
      .number(rect.left)
      .number(rect.bottom)
      .number(rect.right);
}

}  // namespace

AreaKeys addAreaRows(Session& session, const AreaRow& row, const CellBlock& block) {
  AreaKeys keys;
  const Bytes blob = enciphered(session, block);
  Write(session, kInsertBlock).blob(blob).number(block.cellBytes).text(row.version).run();
  keys.block = lastKey(session);
  Write area(session, kInsertArea);
  place(area, row, block.rect).number(keys.block).run();
  keys.area = lastKey(session);
  return keys;
}

void rewriteAreaRows(Session& session, const StoredArea& area, const AreaRow& row, const CellBlock& block) {
  Write update(session, kUpdateArea);
  place(update, row, block.rect).number(area.id).run();
  const Bytes blob = enciphered(session, block);
  Write(session, kUpdateBlock).blob(blob).number(block.cellBytes).number(area.blockId).run();
  rewriteVersion(session, area, row.version);
}

void rewriteVersion(Session& session, const StoredArea& area, const std::string& version) {
  if (version != area.version) Write(session, kUpdateVersion).text(version).number(area.blockId).run();
}

void rewriteBlobOf(Session& session, const StoredArea& area, const Bytes& blob) {
  Write(session, kUpdateBlob).blob(blob).number(area.blockId).run();
  Write(session, kTouchArea).number(area.id).run();
}

// The areas first, all of them: for each block the engine looks through those that are left.
void deleteAreaRows(Session& session, const std::vector<StoredArea>& areas) {
  for (const StoredArea& area : areas) Write(session, kDeleteArea).number(area.id).run();
  for (const StoredArea& area : areas) Write(session, kDeleteBlock).number(area.blockId).run();
}

std::int64_t addScreenFor(Session& session, const AreaName& area) {
  auto screen = session.host().makeRecord<tovr::ScreenInfoData>();
  screen->dbid = static_cast<std::int32_t>(
      queryNumber(session.connection(), "select seq from sqlite_sequence where name = 'DB_Info'"));
  screen->screenname = area.screen;
  setRect(*screen, area.rect);
  session.require(session.manager().insertData(screen.get()));
  return lastKey(session);
}

}  // namespace tovrdb
