#include "manager/CoefFlows.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "manager/RegionCrop.h"
#include "storage/BlobCipher.h"
#include "tables/Schema.h"

namespace tovr {
namespace {

using Screens = std::vector<ScreenInfoData>;
using Areas = std::vector<CoefData>;

// The database types that place areas.
constexpr int kByRectangle = 0;
constexpr int kByName = 1;

// What a record must say before any table is read.
int checkRecord(const CoefData& record, int dbtype) {
  if (record.left == kEdgeNotGiven || record.top == kEdgeNotGiven || record.right == kEdgeNotGiven ||
      record.bottom == kEdgeNotGiven) {
    return kRectangleRefused;
  }
  if (dbtype == kByName && record.screenname.empty()) return kScreenNameMissing;
  return record.coeftype == kDataTypeNotGiven ? kTypeNotGiven : kOk;
}

int readScreens(DataTableOperateBase& list, Screens& screens) {
  ScreenInfoDataResult result;
  const int code = list.query(&result);
  if (code == kOk) screens = std::move(result.screens);
  return code;
}

// What comes before every flow: a look at the record, and all screens. The flow's result where it ends here.
std::optional<int> beginFlow(const CoefData& record, int dbtype, DataTableOperateBase& list, Screens& screens) {
  if (dbtype == kUnknownDatabaseType) return kTypeNotGiven;
  if (dbtype != kByRectangle && dbtype != kByName) return kOk;
  int result = checkRecord(record, dbtype);
  if (result == kOk) result = readScreens(list, screens);
  return result == kOk ? std::nullopt : std::optional(result);
}

int readAreas(DataTableOperateBase& list, Areas& areas) {
  CoefDataResult result;
  const int code = list.query(&result);
  if (code == kOk) areas = std::move(result.coefs);
  return code;
}

// The first item that qualifies, in table order; null when none does.
template <class Item, class Predicate>
const Item* first(const std::vector<Item>& items, const Predicate& qualifies) {
  const auto found = std::find_if(items.begin(), items.end(), qualifies);
  return found != items.end() ? &*found : nullptr;
}

const ScreenInfoData* screenHolding(const Screens& screens, const CoefData& record) {
  return first(screens, [&](const ScreenInfoData& screen) { return holds(rectOf(screen), rectOf(record)); });
}

const ScreenInfoData* screenNamed(const Screens& screens, const std::string& name) {
  return first(screens, [&](const ScreenInfoData& screen) { return screen.screenname == name; });
}

bool sameScreenAndType(const CoefData& area, int screenid, const CoefData& record) {
  return area.screenid == screenid && area.coeftype == record.coeftype;
}

const CoefData* areaOfType(const Areas& areas, int screenid, const CoefData& record) {
  return first(areas, [&](const CoefData& area) { return sameScreenAndType(area, screenid, record); });
}

const CoefData* areaHolding(const Areas& areas, int screenid, const CoefData& record) {
  return first(areas, [&](const CoefData& area) {
    return sameScreenAndType(area, screenid, record) && holds(rectOf(area), rectOf(record));
  });
}

// Read areas keep areaid -1, so a record with any other number never matches and is always added: hosts rely on it.
const CoefData* sameArea(const Areas& areas, int screenid, const CoefData& record) {
  return first(areas, [&](const CoefData& area) {
    return sameScreenAndType(area, screenid, record) && area.areaid == record.areaid && rectOf(area) == rectOf(record);
  });
}

ScreenInfoData screenFor(const CoefData& record) {
  ScreenInfoData screen;
  screen.screenname = record.screenname;
  screen.areaid = record.areaid;
  screen.left = record.left;
  screen.top = record.top;
  screen.right = record.right;
  screen.bottom = record.bottom;
  return screen;
}

void readRegion(EncipheredBlob& block, const CropPlan& plan, unsigned char* cells) {
  if (plan.rows == 0) return;
  block.readRows(static_cast<std::size_t>(plan.first), static_cast<std::size_t>(plan.rowBytes),
                 static_cast<std::size_t>(plan.stride), static_cast<std::size_t>(plan.rows), cells);
}

}  // namespace

int CoefFlows::insert(CoefData& record, int dbtype) {
  Screens screens;
  if (const auto ended = beginFlow(record, dbtype, operators_.screenList, screens)) return *ended;
  return dbtype == kByName ? insertByName(record, screens) : insertByRectangle(record, screens);
}

int CoefFlows::update(CoefData& record, int dbtype) {
  Screens screens;
  if (const auto ended = beginFlow(record, dbtype, operators_.screenList, screens)) return *ended;
  return dbtype == kByName ? updateByName(record, screens) : updateByRectangle(record, screens);
}

int CoefFlows::query(CoefData& record, int dbtype) {
  Screens screens;
  if (const auto ended = beginFlow(record, dbtype, operators_.screens, screens)) return *ended;
  return dbtype == kByName ? queryByName(record, screens) : queryByRectangle(record, screens);
}

int CoefFlows::insertByRectangle(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = screenHolding(screens, record);
  if (screen == nullptr) return kNoScreenForRectangle;
  Areas areas;
  const int result = readAreas(operators_.coefList, areas);
  if (result != kOk) return result;
  const CoefData* area = sameArea(areas, screen->id, record);
  return area != nullptr ? takeOver(record, *area, screen->id) : addArea(record, screen->id);
}

int CoefFlows::insertByName(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = screenNamed(screens, record.screenname);
  if (screen == nullptr) return addScreenAndArea(record);
  Areas areas;
  const int result = readAreas(operators_.coefList, areas);
  if (result != kOk) return result;
  const CoefData* area = areaOfType(areas, screen->id, record);  // one area per screen and type: no rectangle compared
  return area != nullptr ? takeOver(record, *area, screen->id) : addArea(record, screen->id);
}

int CoefFlows::updateByRectangle(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = first(screens, [&](const ScreenInfoData& candidate) {  // equal, not holding
    return candidate.areaid == record.areaid && rectOf(candidate) == rectOf(record);
  });
  return screen != nullptr ? updateArea(record, screen->id) : kNoScreenForRectangle;
}

int CoefFlows::updateByName(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = screenNamed(screens, record.screenname);
  if (screen == nullptr) return kNoSuchScreenName;
  const int result = rewriteScreen(record, screen->id);
  return result == kOk ? updateArea(record, screen->id) : result;
}

int CoefFlows::queryByRectangle(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = screenHolding(screens, record);
  return queryArea(record, screen != nullptr ? screen->id : 0);  // areas of no screen carry the number 0
}

int CoefFlows::queryByName(CoefData& record, const Screens& screens) {
  const ScreenInfoData* screen = screenNamed(screens, record.screenname);
  return screen != nullptr ? queryArea(record, screen->id) : kNoSuchScreenName;
}

int CoefFlows::updateArea(CoefData& record, int screenid) {
  Areas areas;
  const int result = readAreas(operators_.coefList, areas);
  if (result != kOk) return result;
  const CoefData* area = areaOfType(areas, screenid, record);
  return area != nullptr ? takeOver(record, *area, screenid) : kNoMatchingArea;
}

int CoefFlows::queryArea(CoefData& record, int screenid) {
  Areas areas;
  const int result = readAreas(operators_.coefs, areas);
  if (result != kOk) return result;
  const CoefData* area = areaHolding(areas, screenid, record);
  return area != nullptr ? readArea(record, *area) : kNoMatchingArea;
}

// The stored area keeps its keys; its placement and its block are rewritten.
int CoefFlows::takeOver(CoefData& record, const CoefData& area, int screenid) {
  record.id = area.id;
  record.screenid = screenid;
  record.coefid = area.coefid;
  const int result = operators_.coefs.update(&record);
  return result == kOk ? operators_.coefs.updateCoef(area.coefid, &record) : result;
}

// The block goes first: the placement refers to it by foreign key.
int CoefFlows::addArea(CoefData& record, int screenid) {
  int result = operators_.coefs.insertCoef(&record);
  if (result != kOk) return result;
  record.screenid = screenid;
  result = operators_.coefs.getSequence(table::kCoef, &record.coefid);
  return result == kOk ? operators_.coefs.insert(&record) : result;
}

int CoefFlows::addScreenAndArea(CoefData& record) {
  ScreenInfoData screen = screenFor(record);
  int result = operators_.screens.getSequence(table::kDBInfo, &screen.dbid);
  if (result == kOk) result = operators_.screens.insert(&screen);
  if (result == kOk) result = operators_.coefs.insertCoef(&record);
  if (result == kOk) result = operators_.screens.getSequence(table::kScreenInfo, &record.screenid);
  if (result == kOk) result = operators_.coefs.getSequence(table::kCoef, &record.coefid);
  return result == kOk ? operators_.coefs.insert(&record) : result;
}

int CoefFlows::rewriteScreen(const CoefData& record, int screenid) {
  ScreenInfoData screen = screenFor(record);
  screen.id = screenid;
  const int result = operators_.screens.getSequence(table::kDBInfo, &screen.dbid);
  return result == kOk ? operators_.screens.update(&screen) : result;
}

// Only the cells asked for are deciphered, straight out of the row. A placement whose block's row is missing counts as
// a block of no bytes.
int CoefFlows::readArea(CoefData& record, const CoefData& area) {
  const Rect stored = rectOf(area);
  const Rect requested = rectOf(record);
  CoefData filled = record;  // what allocates comes before the cells, and before what the caller sees
  filled.coeftablename = area.coeftablename;
  filled.multilayerlist = area.multilayerlist;
  CoefBuffer region;
  CropPlan plan;
  std::unique_ptr<unsigned char[]> cells;
  int cropped = planCrop(stored, requested, 0, 0, plan);
  const int result = operators_.coefs.visitCoef(area.coefid, [&](int cellBytes, EncipheredBlob& block) {
    region.databitwidth = cellBytes;
    cropped = planCrop(stored, requested, cellBytes, static_cast<std::int32_t>(block.payloadSize()), plan);
    if (cropped != kOk || plan.bytes < 0) return;  // told below, once the row is done with
    cells = allocateRegion(plan);
    readRegion(block, plan, cells.get());
  });
  if (result != kOk && cells != nullptr) wipe(cells.get(), static_cast<std::size_t>(plan.bytes));
  if (result != kOk) return result;
  if (cropped != kOk) return cropped;
  if (cells == nullptr) cells = allocateRegion(plan);
  region.datasize = static_cast<std::int32_t>(plan.bytes);

  filled.id = area.id;
  filled.screenid = area.screenid;
  filled.coefid = area.coefid;
  filled.areaIndex = area.areaIndex;
  filled.multilayersize = area.multilayersize;
  region.data = cells.release();
  filled.coefBuffer = region;
  record = std::move(filled);
  return kOk;
}

}  // namespace tovr
