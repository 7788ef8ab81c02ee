#include "tests/faults/OperationSweep.h"

#include <algorithm>
#include <iostream>

namespace tovrtest {
namespace {

namespace fs = std::filesystem;

constexpr Rect kKept{0, 0, 3, 3};
constexpr Rect kTarget{10, 10, 13, 13};
constexpr char kBuiltInKey[] = "brimstoquelvard";

int attempt(const Attempt& made, IDBManager& manager) {
  try {
    return made.act(manager);
  } catch (const std::bad_alloc&) {
    return kThrown;
  }
}

std::shared_ptr<DataBase> screen(int id, const std::string& name) {
  auto record = std::make_shared<ScreenInfoData>();
  record->id = id;
  record->dbid = 1;
  record->screenname = name;
  setRect(*record, kTarget);
  return record;
}

// Of generic data or of a measurement.
template <class Record>
std::shared_ptr<Record> recordOver(Bytes& bytes) {
  auto record = std::make_shared<Record>();
  record->datatype = 1;
  record->version = "new";
  record->data = bytes.data();
  record->dataSize = static_cast<std::uint32_t>(bytes.size());
  return record;
}

}  // namespace

void OperationSweep::SetUp() {
  createFile(GetParam());
  ASSERT_EQ(addScreen("kept", kKept), kOk);
  ASSERT_EQ(addScreen("target", kTarget), kOk);
  CoefData keptArea = coef(kKept, kept_, 2, "kept");
  ASSERT_EQ(manager->insertData(&keptArea), kOk);
  CoefData oldArea = coef(kTarget, old_, 2, "target");
  oldArea.multilayersize = 2;
  oldArea.multilayerlist = {7, 8};
  ASSERT_EQ(manager->insertData(&oldArea), kOk);
  ASSERT_EQ(insertData(1, old_), kOk);
  ASSERT_EQ(insertData(2, kept_), kOk);
  ASSERT_EQ(manager->closeDB(), kOk);
  fs::rename(path("file.db"), path("template.db"));
  ASSERT_EQ(manager->openDB(path("check.db"), kBuiltInKey), kOk);
  ASSERT_EQ(manager->createTables(), kOk);
  ASSERT_EQ(manager->closeDB(), kOk);
  addFileOperations();
  addBlockOperations();
  addReadings();
  addTableOperations();
  addDeletions();
}

void OperationSweep::sweep(FaultSource& source) {
  int points = 0;
  quietly([&] {
    for (const Operation& operation : operations_) {
      for (const Failing how : {Failing::kOnce, Failing::kFromThereOn}) {
        for (int point = 1; !HasFailure() && meetsFault(operation, source, point, how); ++point) ++points;
      }
    }
  });
  manager->closeDB();
  EXPECT_GT(points, 200);
  std::cout << "failed at " << points << " points\n";
}

bool OperationSweep::meetsFault(const Operation& operation, FaultSource& source, int point, Failing how) {
  SCOPED_TRACE(operation.name + ", point " + std::to_string(point) + (how == Failing::kOnce ? "" : " and on"));
  openFresh();
  Attempt first = operation.prepare();
  source.arm(operation, point, how);
  const int code = attempt(first, *manager);
  const bool met = source.disarm();
  first.verify(code);
  if (code == operation.success) operation.expectEffect();
  if (!met) {
    EXPECT_EQ(code, operation.success);
    return false;
  }
  source.expectCode(operation, code);
  if (!operation.leavesFile) expectWhole(operation.hidesBlocks);
  Attempt next = operation.prepare();
  const int nextCode = attempt(next, *manager);
  next.verify(nextCode);
  EXPECT_EQ(nextCode, operation.success);
  reopen();
  expectWhole(operation.hidesBlocks);
  return true;
}

// A journal that a fault has left beside the file would be played back into its successor.
void OperationSweep::openFresh() {
  manager->closeDB();
  fs::remove(path("file.db-journal"));
  fs::remove(path("file.db"));  // where MinGW's library copies, it does not overwrite
  fs::copy_file(path("template.db"), path("file.db"));
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
}

void OperationSweep::reopen() {
  manager->closeDB();
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), kOk);
}

// Every listed area reads back, with the cells it had or those it was to get; at most one block lies alone.
void OperationSweep::expectWhole(bool blocksHidden) {
  EXPECT_EQ(value("pragma integrity_check"), "ok");
  EXPECT_EQ(number("select count(*) from Coef_Info where coefid not in (select id from Coef)"), 0);
  if (blocksHidden) return;
  EXPECT_LE(number("select count(*) from Coef where id not in (select coefid from Coef_Info)"), 1);
  EXPECT_GE(areas().size(), 2U);
  for (const CoefData& area : areas()) {
    SCOPED_TRACE("area " + std::to_string(area.id));
    const std::string screen = value("select screenname from Screen_Info where id = " + std::to_string(area.screenid));
    const Bytes cells = cellsAt(rectOf(area), screen);
    if (rectOf(area) == kKept) {
      EXPECT_EQ(cells, kept_);
    } else if (cells != new_) {
      EXPECT_EQ(cells, old_);
    }
  }
}

Operation& OperationSweep::add(const std::string& name, const std::function<int(IDBManager&)>& act) {
  operations_.push_back({name, [act] { return Attempt{act}; }});
  return operations_.back();
}

Operation& OperationSweep::add(const std::string& name, Call call, const std::function<Record()>& makeRecord) {
  const auto prepare = [call, makeRecord] {
    return Attempt{[call, record = makeRecord()](IDBManager& m) { return (m.*call)(record.get()); }};
  };
  operations_.push_back({name, prepare});
  return operations_.back();
}

std::function<void()> OperationSweep::found(const std::string& sql, int wanted) {
  return [this, sql, wanted] { EXPECT_EQ(number(sql), wanted) << sql; };
}

void OperationSweep::addFileOperations() {
  Operation& open = add("openDB", [file = path("file.db")](IDBManager& m) { return m.openDB(file, kRawKey); });
  Operation& check =
      add("checkDB", [file = path("check.db")](IDBManager& m) { return m.checkDB(file) ? kOk : kNotChecked; });
  Operation& create = add("createTables", [](IDBManager& m) { return m.createTables(); });
  Operation& close = add("closeDB", [](IDBManager& m) { return m.closeDB(); });
  add("getDBType", [](IDBManager& m) { return m.getDBType(); }).success = GetParam();
  create.prepare = [this, prepare = create.prepare] {
    manager->closeDB();
    fs::remove(path("new.db"));
    EXPECT_EQ(manager->openDB(path("new.db"), kRawKey), kOk);
    return prepare();
  };
  create.expectEffect = found("select count(*) from sqlite_master where sql like 'create table%'", 9 + 1);
  close.prepare = [this, prepare = close.prepare] {
    reopen();
    return prepare();
  };
  open.derivesKey = check.derivesKey = create.derivesKey = true;
  open.leavesFile = check.leavesFile = create.leavesFile = close.leavesFile = true;
}

void OperationSweep::addStoring(const std::string& name, Call call, const Rect& rect, const std::string& screen,
                                int areaid) {
  Operation& operation = add(name, call, [=] {
    auto record = std::make_shared<CoefData>(coef(rect, new_, 2, screen));
    record->areaid = areaid;
    record->multilayerlist = {1, 2, 3};
    return record;
  });
  operation.expectEffect = [=] {
    EXPECT_GE(number("select count(*) from Coef_Info where length(multilayerlist) = 12"), 1);
    EXPECT_EQ(cellsAt(rect, screen), areaid == -1 ? new_ : old_);  // one with a number lies behind the old area
  };
}

void OperationSweep::addBlockOperations() {
  const Call insert = &IDBManager::insertData;
  addStoring("insertData, stored area", insert, kTarget, "target", -1);
  addStoring("updateData, stored area", &IDBManager::updateData, kTarget, "target", -1);
  if (GetParam() == kByName) addStoring("insertData, new screen", insert, kTarget, "another", -1);
  if (GetParam() == kByRectangle) addStoring("insertData, new area", insert, kTarget, "target", 3);
}

void OperationSweep::addReadings() {
  for (const int type : {kDBInfo, kCoefDataResult, kScreenInfoDataResult}) {
    add("queryData of type " + std::to_string(type), &IDBManager::queryData,
        [=] { return Record(manager->createData(type)); });
  }
  Bytes wanted(kept_.begin() + 10, kept_.begin() + 14);  // two cells of the second row, and two of the third
  wanted.insert(wanted.end(), kept_.begin() + 18, kept_.begin() + 22);
  const auto window = [wanted] {
    Bytes none;
    const auto record = std::make_shared<CoefData>(coef({1, 1, 2, 2}, none, 0, "kept"));
    const auto verify = [record, wanted](int code) {
      const std::unique_ptr<unsigned char[]> cells(record->coefBuffer.data);
      EXPECT_EQ(cells != nullptr, code == kOk);
      EXPECT_EQ(record->coefid, code == kOk ? 1 : 0);
      EXPECT_EQ(record->coeftablename, code == kOk ? "Coef" : "");
      if (!cells) return;
      EXPECT_EQ(Bytes(cells.get(), cells.get() + record->coefBuffer.datasize), wanted);
    };
    return Attempt{[record](IDBManager& m) { return m.queryData(record.get()); }, verify};
  };
  const auto genericData = [this] {
    const auto record = std::make_shared<ConfigData>();
    record->datatype = 1;
    const auto verify = [this, record](int code) {
      const std::unique_ptr<unsigned char[]> bytes(record->data);
      if (code != kOk) return;
      EXPECT_EQ(Bytes(bytes.get(), bytes.get() + record->dataSize), old_);
    };
    return Attempt{[record](IDBManager& m) { return m.queryData(record.get()); }, verify};
  };
  operations_.push_back({"queryData, a window", window});
  operations_.push_back({"queryData of generic data", genericData});
}

void OperationSweep::addTableOperations() {
  const Call insert = &IDBManager::insertData;
  add("insertData of a screen", insert, [] { return screen(0, "added"); }).expectEffect =
      found("select count(*) > 0 from Screen_Info where screenname = 'added'", 1);
  add("updateData of a screen", &IDBManager::updateData, [] { return screen(2, "target"); }).expectEffect =
      found("select count(*) from Screen_Info where screenname = 'target'", 1);
  add("insertData of generic data", insert, [this] { return recordOver<ConfigData>(new_); }).expectEffect =
      found("select count(*) > 0 from Data where version = 'new'", 1);
  add("insertData of a description", insert, [] { return std::make_shared<DBInfo>(); }).expectEffect =
      found("select count(*) > 1 from DB_Info", 1);
  add("insertData of a measurement", insert, [this] { return recordOver<LumChromaData>(new_); }).success =
      SQLITE_CONSTRAINT;  // its placement is refused
}

void OperationSweep::addDeletions() {
  const auto remove = [this](DataType type) -> Operation& {
    return add("deleteData of type " + std::to_string(type), &IDBManager::deleteData,
               [=] { return Record(manager->createData(type)); });
  };
  remove(kLumChromaData).expectEffect = found("select count(*) from LumChromData", 0);
  remove(kScreenInfoData).success = SQLITE_ERROR;
  remove(kScreenInfoDataResult).success = SQLITE_ERROR;
  const std::pair<DataType, const char*> hiding[] = {
      {kCoefData, "Coef"}, {kCoefDataResult, "Coef_Info"}, {kDBInfo, "DB_Info"}};
  for (const auto& [type, table] : hiding) {
    Operation& operation = remove(type);
    operation.hidesBlocks = true;  // without the description, the type of the file is unknown
    operation.expectEffect = found(std::string("select count(*) from ") + table, 0);
  }
  operations_.back().success = SQLITE_CONSTRAINT;  // screens refer to the other table of the description
}

}  // namespace tovrtest
