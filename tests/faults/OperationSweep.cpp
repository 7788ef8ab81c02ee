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

Operation onFile(const std::string& name, std::function<int(IDBManager&)> act) {
  return {name, [act] { return Attempt{act}; }};
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
}

void OperationSweep::sweep(FaultSource& source) {
  int points = 0;
  quietly([&] {
    for (const Operation& operation : operations()) {
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

std::vector<Operation> OperationSweep::operations() {
  std::vector<Operation> all = fileOperations();
  for (auto& group : {blockOperations(), tableOperations(), deletions()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

std::vector<Operation> OperationSweep::fileOperations() {
  Operation open = onFile("openDB", [file = path("file.db")](IDBManager& m) { return m.openDB(file, kRawKey); });
  Operation check =
      onFile("checkDB", [file = path("check.db")](IDBManager& m) { return m.checkDB(file) ? kOk : kNotChecked; });
  Operation type = onFile("getDBType", [](IDBManager& m) { return m.getDBType(); });
  Operation create{"createTables", {}};
  Operation close{"closeDB", {}};
  create.prepare = [this] {
    manager->closeDB();
    fs::remove(path("new.db"));
    EXPECT_EQ(manager->openDB(path("new.db"), kRawKey), kOk);
    return Attempt{[](IDBManager& m) { return m.createTables(); }};
  };
  create.expectEffect = [this] {
    EXPECT_EQ(number("select count(*) from sqlite_master where sql like 'create table%'"), 9 + 1) << "the engine's own";
  };
  close.prepare = [this] {
    reopen();
    return Attempt{[](IDBManager& m) { return m.closeDB(); }};
  };
  type.success = GetParam();
  open.derivesKey = check.derivesKey = create.derivesKey = true;
  open.leavesFile = check.leavesFile = create.leavesFile = close.leavesFile = true;
  return {open, check, type, create, close};
}

Operation OperationSweep::onRecord(const std::string& name, Call call, const std::function<Record()>& makeRecord) {
  return {name, [call, makeRecord] {
            return Attempt{[call, record = makeRecord()](IDBManager& m) { return (m.*call)(record.get()); }};
          }};
}

// The operation, whose success shows in a number that is read from the file.
Operation OperationSweep::changing(Operation operation, const std::string& sql, int wanted) {
  operation.expectEffect = [this, sql, wanted] { EXPECT_EQ(number(sql), wanted) << sql; };
  return operation;
}

Operation OperationSweep::storing(const std::string& name, Call call, const Rect& rect, const std::string& screen,
                                  int areaid) {
  Operation operation = onRecord(name, call, [=] {
    auto record = std::make_shared<CoefData>(coef(rect, new_, 2, screen));
    record->areaid = areaid;
    record->multilayerlist = {1, 2, 3};
    return record;
  });
  operation.expectEffect = [=] {
    EXPECT_GE(number("select count(*) from Coef_Info where length(multilayerlist) = 12"), 1);
    EXPECT_EQ(cellsAt(rect, screen), areaid == -1 ? new_ : old_);  // one with a number lies behind the old area
  };
  return operation;
}

std::vector<Operation> OperationSweep::blockOperations() {
  const Call insert = &IDBManager::insertData;
  return {storing("insertData, stored area", insert, kTarget, "target", -1),
          storing("updateData, stored area", &IDBManager::updateData, kTarget, "target", -1),
          GetParam() == kByName ? storing("insertData, new screen", insert, kTarget, "another", -1)
                                : storing("insertData, new area", insert, kTarget, "target", 3),
          readingAWindow()};
}

Operation OperationSweep::readingAWindow() {
  Bytes wanted(kept_.begin() + 10, kept_.begin() + 14);  // two cells of the second row, and two of the third
  wanted.insert(wanted.end(), kept_.begin() + 18, kept_.begin() + 22);
  return {"queryData, a window", [wanted] {
            Bytes none;
            auto record = std::make_shared<CoefData>(coef({1, 1, 2, 2}, none, 0, "kept"));
            return Attempt{[record](IDBManager& m) { return m.queryData(record.get()); },
                           [record, wanted](int code) {
                             const std::unique_ptr<unsigned char[]> cells(record->coefBuffer.data);
                             EXPECT_EQ(cells != nullptr, code == kOk);
                             EXPECT_EQ(record->coefid, code == kOk ? 1 : 0);
                             EXPECT_EQ(record->coeftablename, code == kOk ? "Coef" : "");
                             if (!cells) return;
                             EXPECT_EQ(Bytes(cells.get(), cells.get() + record->coefBuffer.datasize), wanted);
                           }};
          }};
}

Operation OperationSweep::readingGenericData() {
  return {"queryData of generic data", [this] {
            auto record = std::make_shared<ConfigData>();
            record->datatype = 1;
            return Attempt{[record](IDBManager& m) { return m.queryData(record.get()); },
                           [this, record](int code) {
                             const std::unique_ptr<unsigned char[]> bytes(record->data);
                             if (code != kOk) return;
                             EXPECT_EQ(Bytes(bytes.get(), bytes.get() + record->dataSize), old_);
                           }};
          }};
}

std::vector<Operation> OperationSweep::tableOperations() {
  const Call insert = &IDBManager::insertData;
  std::vector<Operation> made = {
      changing(onRecord("insertData of a screen", insert, [] { return screen(0, "added"); }),
               "select count(*) > 0 from Screen_Info where screenname = 'added'", 1),
      changing(onRecord("updateData of a screen", &IDBManager::updateData, [] { return screen(2, "target"); }),
               "select count(*) from Screen_Info where screenname = 'target'", 1),
      changing(onRecord("insertData of generic data", insert, [this] { return recordOver<ConfigData>(new_); }),
               "select count(*) > 0 from Data where version = 'new'", 1),
      changing(onRecord("insertData of a description", insert, [] { return std::make_shared<DBInfo>(); }),
               "select count(*) > 1 from DB_Info", 1),
      onRecord("insertData of a measurement", insert, [this] { return recordOver<LumChromaData>(new_); })};
  made.back().success = SQLITE_CONSTRAINT;  // its placement is refused
  for (const int type : {kDBInfo, kCoefDataResult, kScreenInfoDataResult}) {
    made.push_back(onRecord("queryData of type " + std::to_string(type), &IDBManager::queryData,
                            [=] { return Record(manager->createData(type)); }));
  }
  made.push_back(readingGenericData());
  return made;
}

std::vector<Operation> OperationSweep::deletions() {
  const struct {
    DataType type;
    const char* table;  // empty afterwards
    bool hidesBlocks;   // without the description, the type of the file is unknown
    int success;
  } cases[] = {{kCoefData, "Coef", true, kOk},
               {kLumChromaData, "LumChromData", false, kOk},
               {kScreenInfoData, nullptr, false, SQLITE_ERROR},
               {kDBInfo, "DB_Info", true, SQLITE_CONSTRAINT},
               {kCoefDataResult, "Coef_Info", true, kOk},
               {kScreenInfoDataResult, nullptr, false, SQLITE_ERROR}};
  std::vector<Operation> made;
  for (const auto& c : cases) {
    Operation operation = onRecord("deleteData of type " + std::to_string(c.type), &IDBManager::deleteData,
                                   [=] { return Record(manager->createData(c.type)); });
    operation.success = c.success;
    operation.hidesBlocks = c.hidesBlocks;
    made.push_back(c.table == nullptr ? operation
                                      : changing(operation, std::string("select count(*) from ") + c.table, 0));
  }
  return made;
}

}  // namespace tovrtest
