#include "tool/database/CoefArea.h"

#include "storage/StatusCodes.h"
#include "tool/database/SqlQuery.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr std::size_t kMostNamed = 8;  // things that an error text lists

std::string named(const std::string& title, const std::vector<Row>& rows) {
  std::string text;
  for (std::size_t i = 0; i < rows.size() && i < kMostNamed; ++i) {
    const Row& row = rows[i];
    text += (i == 0 ? "" : ", ") + row[0] + " (" + row[1] + "," + row[2] + ".." + row[3] + "," + row[4] + ")";
  }
  if (rows.size() > kMostNamed) text += " and " + std::to_string(rows.size() - kMostNamed) + " more";
  return title + ": " + (rows.empty() ? "none" : text);
}

// What is there instead of what was asked for; empty where that does not help.
std::string alternatives(Session& session, int code, const AreaOptions& options) {
  if (code == tovr::kNoScreenForRectangle || code == tovr::kNoSuchScreenName) {
    return named("screens", queryRows(session.connection(),
                                      "select ifnull(screenname, ''), left, top, right, bottom from Screen_Info"));
  }
  if (code == tovr::kNoMatchingArea) {
    const std::string type = std::to_string(options.type);
    return named("areas of type " + type,
                 queryRows(session.connection(),
                           "select ifnull(s.screenname, ''), i.left, i.top, i.right, i.bottom from Coef_Info i"
                           " left join Screen_Info s on s.id = i.screenid where i.coeftype = " +
                               type));
  }
  return {};
}

}  // namespace

void requireArea(Session& session, int code, const AreaOptions& options, const Rect& rect) {
  if (code == 0) return;
  const std::string instead = alternatives(session, code, options);
  session.require(code, "asked for " + toText(rect) + (instead.empty() ? "" : "; " + instead));
}

void fillArea(Session& session, const AreaOptions& options, const Rect& rect, tovr::CoefData& record) {
  const int databaseType = session.manager().getDBType();
  if (databaseType == 1 && options.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by name (type 1): say which with --screen");
  }
  if (databaseType == 0 && !options.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by rectangle (type 0): leave out --screen");
  }
  record.coeftype = options.type;
  record.screenname = options.screen;
  setRect(record, rect);
}

std::unique_ptr<tovr::CoefData> recordOf(Session& session, const AreaOptions& options, const BlockText& text,
                                         CellBlock& block) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  fillArea(session, options, block.rect, *record);
  record->areaid = text.number;
  record->version = text.version;
  record->coefBuffer.databitwidth = block.cellBytes;
  record->coefBuffer.data = block.bytes.data();
  record->coefBuffer.datasize = static_cast<std::int32_t>(block.bytes.size());
  return record;
}

}  // namespace tovrtool
