#include "tool/database/BlockStore.h"

#include <fmt/core.h>

#include <algorithm>

#include "storage/StatusCodes.h"
#include "tool/database/LibraryError.h"
#include "tool/database/NumberForms.h"
#include "tool/database/Screens.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/FileInput.h"
#include "tool/io/TextList.h"

namespace tovrtool {
namespace {

std::string namedRect(const std::string& name, const Rect& rect) { return fmt::format("{} ({})", name, toText(rect)); }

// What is there instead of what was asked for; empty where that does not help.
std::string alternatives(Session& session, int code, const AreaName& area) {
  std::vector<std::string> names;
  if (code == tovr::kNoScreenForRectangle || code == tovr::kNoSuchScreenName) {
    for (const StoredScreen& screen : storedScreens(session)) names.push_back(namedRect(screen.name, screen.rect));
    return "; screens: " + shortList(names);
  }
  if (code == tovr::kNoMatchingArea) {
    for (const Placement& stored : placements(session)) {
      if (stored.type == area.type) names.push_back(namedRect(stored.screen, stored.rect));
    }
    return fmt::format("; areas of type {}: {}", area.type, shortList(names));
  }
  return {};
}

void requireArea(Session& session, int code, const AreaName& area) {
  if (code == 0) return;
  session.require(code, fmt::format("asked for {}{}", toText(area.rect), alternatives(session, code, area)));
}

// Throws ToolError where the name does not suit the database's type.
std::unique_ptr<tovr::CoefData> recordOf(Session& session, const AreaName& area) {
  const int databaseType = session.manager().getDBType();
  if (databaseType == 1 && area.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by name (type 1): say which with --screen");
  }
  if (databaseType == 0 && !area.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by rectangle (type 0): leave out --screen");
  }
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = area.type;
  record->screenname = area.screen;
  setRect(*record, area.rect);
  return record;
}

// The record as the library leaves it: with the keys of the block and of its screen.
std::unique_ptr<tovr::CoefData> store(Session& session, const AreaName& area, const BlockText& text,
                                      const CellBlock& block, StoreMode mode) {
  auto record = recordOf(session, area);
  record->areaid = text.number;
  record->version = text.version;
  record->coefBuffer.databitwidth = block.cellBytes;
  record->coefBuffer.data = block.bytes.get();
  record->coefBuffer.datasize = static_cast<std::int32_t>(block.size());
  tovr::IDBManager& manager = session.manager();
  requireArea(session, mode == StoreMode::kUpdate ? manager.updateData(record.get()) : manager.insertData(record.get()),
              area);
  keepForm(session, record->coefid, block.cellBytes, {text.form, text.dtype, !text.version.empty(), text.version});
  return record;
}

// The library answers a rectangle from the first area that holds it, so an older one can hide a new one.
std::optional<Placement> hidingArea(Session& session, const tovr::CoefData& record) {
  const auto areas = placements(session);
  const auto first = std::find_if(areas.begin(), areas.end(), [&](const Placement& area) {
    return area.screenId == record.screenid && area.type == record.coeftype && holds(area.rect, rectOf(record));
  });
  if (first == areas.end() || first->blockId == record.coefid) return std::nullopt;
  return *first;
}

// The bytes of the file that was stored.
std::uint64_t storeFile(Session& session, const BlockFile& entry) {
  try {
    Bytes file = readWholeFile(entry.path);
    const std::uint64_t size = file.size();
    NpyArray array = parseNpy(std::move(file), entry.path);
    BlockText text = entry.text;
    text.dtype = array.dtype;
    store(session, entry.area, text, blockFromArray(std::move(array), entry.area.rect, {}), StoreMode::kInsert);
    return size;
  } catch (const ToolError& error) {
    throw ToolError(error.code(), "{}: {}; nothing was stored", entry.path, error.what());
  }
}

}  // namespace

StoreReport storeBlock(Session& session, const AreaName& area, const BlockText& text, const CellBlock& block,
                       StoreMode mode) {
  const std::size_t screens = storedScreens(session).size();
  Transaction transaction(session);
  const auto record = store(session, area, text, block, mode);
  transaction.commit();
  return {record->coefid, storedScreens(session).size() > screens, hidingArea(session, *record)};
}

void storeFiles(Session& session, const std::vector<BlockFile>& files, Progress& progress) {
  Transaction transaction(session);
  for (const BlockFile& file : files) progress.advance(storeFile(session, file));
  transaction.commit();
}

CellBlock fetchBlock(Session& session, const AreaName& area) {
  const auto record = recordOf(session, area);
  return queryCells(session, *record, [&](int code) {
    if (code != tovr::kNoMatchingArea) return requireArea(session, code, area);
    std::vector<StoredArea> areas = areasOfType(session, area.type, area.screen);
    throw libraryError(code, fmt::format("asked for {}; {}", toText(area.rect), insteadOf(area.rect, areas)));
  });
}

}  // namespace tovrtool
