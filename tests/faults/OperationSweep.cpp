#include "tests/faults/OperationSweep.h"

#include <algorithm>
#include <iostream>

namespace tovrtest {
namespace {

namespace fs = std::filesystem;

constexpr Rect kKept{0, 0, 3, 3};
constexpr Rect kTarget{10, 10, 13, 13};
constexpr char kBuiltInKey[] = "brimstoquelvard";

const auto kIgnore = [](int) {};

int attempt(const Attempt& made, IDBManager& manager) {
  try {
    return made.act(manager);
  } catch (const std::bad_alloc&) {
    return kThrown;
  }
}

template <class Record>
std::shared_ptr<Record> recordWith(const std::function<void(Record&)>& fill) {
  auto record = std::make_shared<Record>();
  fill(*record);
  return record;
}

}  // namespace

void OperationSweep::SetUp() {
  createFile(GetParam());
  ASSERT_EQ(addScreen("kept", kKept) + addScreen("target", kTarget), 0);
  CoefData keptArea = coef(kKept, kept_, 2, "kept");
  CoefData oldArea = coef(kTarget, old_, 2, "target");
  oldArea.multilayersize = 2;
  oldArea.multilayerlist = {7, 8};
  ASSERT_EQ(manager->insertData(&keptArea) + manager->insertData(&oldArea), 0);
  ASSERT_EQ(insertData(1, old_) + insertData(2, kept_), 0);
  ASSERT_EQ(manager->closeDB(), 0);
  fs::rename(path("file.db"), path("template.db"));
  ASSERT_EQ(manager->openDB(path("check.db"), kBuiltInKey), 0);
  ASSERT_EQ(manager->createTables() + manager->closeDB(), 0);
}

void OperationSweep::sweep(FaultSource& source) {
  int points = 0;
  const std::string printed = printedBy([&] {
    for (const Operation& operation : operations()) {
      for (const Failing how : {Failing::kOnce, Failing::kFromThereOn}) {
        if (!HasFailure()) points += sweepOne(operation, source, how);
      }
    }
  });
  manager->closeDB();
  if (HasFailure()) std::cout << printed.substr(printed.rfind('\n', printed.find(": Failure")));
  EXPECT_GT(points, 200);
  std::cout << "failed at " << points << " points\n";
}

int OperationSweep::sweepOne(const Operation& operation, FaultSource& source, Failing how) {
  int point = 1;
  while (!HasFailure() && meetsFault(operation, source, point, how)) ++point;
  return point - 1;
}

bool OperationSweep::meetsFault(const Operation& operation, FaultSource& source, int point, Failing how) {
  SCOPED_TRACE(operation.name + ", point " + std::to_string(point) + (how == Failing::kOnce ? "" : " and on"));
  openFresh();
  Attempt first = operation.prepare();
  source.arm(operation, point, how);
  const int code = attempt(first, *manager);
  const bool met = source.disarm();
  first.verify(code);
  if (code == operation.success && operation.effect) {
    EXPECT_EQ(operation.effect(), operation.effectWanted);
  }
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
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
}

void OperationSweep::reopen() {
  manager->closeDB();
  ASSERT_EQ(manager->openDB(path("file.db"), kRawKey), 0);
}

// Every listed area reads back, with the cells it had or those it was to get; at most one block lies alone.
void OperationSweep::expectWhole(bool blocksHidden) {
  EXPECT_EQ(rows("pragma integrity_check"), "ok\n");
  EXPECT_EQ(rows("select count(*) from Coef_Info where coefid not in (select id from Coef)"), "0\n");
  if (blocksHidden) return;
  EXPECT_EQ(rows("select count(*) < 2 from Coef where id not in (select coefid from Coef_Info)"), "1\n");
  CoefDataResult areas;
  ScreenInfoDataResult screens;
  ASSERT_EQ(manager->queryData(&areas) + manager->queryData(&screens), 0);
  ASSERT_GE(areas.coefs.size(), 2U);
  for (const CoefData& area : areas.coefs) {
    const auto screen = std::find_if(screens.screens.begin(), screens.screens.end(),
                                     [&](const ScreenInfoData& candidate) { return candidate.id == area.screenid; });
    ASSERT_NE(screen, screens.screens.end());
    const Read cells = read(rectOf(area), screen->screenname);
    const bool isKept = rectOf(area) == kKept;
    EXPECT_TRUE(cells == Read(0, isKept ? kept_ : old_) || (!isKept && cells == Read(0, new_))) << area.id;
  }
}

std::vector<Operation> OperationSweep::operations() {
  std::vector<Operation> all = fileOperations();
  for (auto& group : {blockOperations(), tableOperations()}) all.insert(all.end(), group.begin(), group.end());
  return all;
}

std::vector<Operation> OperationSweep::fileOperations() {
  const std::string file = path("file.db");
  const auto simple = [](std::function<int(IDBManager&)> act) { return [act] { return Attempt{act, kIgnore}; }; };
  Operation open{"openDB", 0, simple([file](IDBManager& m) { return m.openDB(file, kRawKey); }), {}, ""};
  Operation create{"createTables", 0, {}, {}, "10\n"};  // with the engine's own
  create.prepare = [this] {
    manager->closeDB();
    fs::remove(path("new.db"));
    EXPECT_EQ(manager->openDB(path("new.db"), kRawKey), 0);
    return Attempt{[](IDBManager& m) { return m.createTables(); }, kIgnore};
  };
  create.effect = [this] { return rows("select count(*) from sqlite_master where sql like 'create table%'"); };
  Operation check{"checkDB", 0, {}, {}, ""};
  check.prepare = simple([file = path("check.db")](IDBManager& m) { return m.checkDB(file) ? 0 : -2; });
  Operation close{"closeDB", 0, {}, {}, ""};
  close.prepare = [this] {
    reopen();
    return Attempt{[](IDBManager& m) { return m.closeDB(); }, kIgnore};
  };
  create.leavesFile = check.leavesFile = close.leavesFile = open.leavesFile = true;
  open.derivesKey = create.derivesKey = check.derivesKey = true;
  Operation type{"getDBType", GetParam(), simple([](IDBManager& m) { return m.getDBType(); }), {}, ""};
  return {open, create, check, close, type};
}

Attempt OperationSweep::onRecord(std::shared_ptr<DataBase> record, int (IDBManager::*call)(DataBase*)) {
  return {[record, call](IDBManager& m) { return (m.*call)(record.get()); }, kIgnore};
}

Operation OperationSweep::storing(const std::string& name, int (IDBManager::*call)(DataBase*), const Rect& rect,
                                  const std::string& screen, int areaid) {
  const auto prepare = [=] {
    auto record = std::make_shared<CoefData>(coef(rect, new_, 2, screen));
    record->areaid = areaid;
    record->multilayerlist = {1, 2, 3};
    return onRecord(record, call);
  };
  const std::string stored = "select count(*) > 0 from Coef_Info where length(multilayerlist) = 12";
  return {name, 0, prepare, [=] { return rows(stored) + (read(rect, screen).second == new_ ? "new" : "old"); },
          areaid == -1 ? "1\nnew" : "1\nold"};  // an area with a number of its own lies behind the old one
}

std::vector<Operation> OperationSweep::blockOperations() {
  const bool byName = GetParam() == 1;
  std::vector<Operation> made = {
      storing("insertData, stored area", &IDBManager::insertData, kTarget, "target", -1),
      storing("updateData, stored area", &IDBManager::updateData, kTarget, "target", -1),
      byName ? storing("insertData, new screen", &IDBManager::insertData, kTarget, "another", -1)
             : storing("insertData, new area", &IDBManager::insertData, kTarget, "target", 3)};
  Operation query{"queryData, a window", 0, {}, {}, ""};
  query.prepare = [this] {
    Bytes none;
    auto record = std::make_shared<CoefData>(coef({1, 1, 2, 2}, none, 0, "kept"));
    Attempt attempt = onRecord(record, &IDBManager::queryData);
    attempt.verify = [this, record, before = fieldsOf(*record)](int code) {
      EXPECT_TRUE(code == 0 || fieldsOf(*record) == before);
      const std::unique_ptr<unsigned char[]> cells(record->coefBuffer.data);
      EXPECT_EQ(cells != nullptr, code == 0);
      Bytes wanted;
      for (const int at : {10, 11, 12, 13, 18, 19, 20, 21}) wanted.push_back(kept_[static_cast<std::size_t>(at)]);
      EXPECT_TRUE(code != 0 || Bytes(cells.get(), cells.get() + record->coefBuffer.datasize) == wanted);
    };
    return attempt;
  };
  made.push_back(query);
  return made;
}

std::vector<Operation> OperationSweep::tableOperations() {
  std::vector<Operation> made;
  const auto add = [&](const std::string& name, int (IDBManager::*call)(DataBase*),
                       const std::function<std::shared_ptr<DataBase>()>& record, const std::string& sql,
                       const std::string& wanted, int success = 0) {
    made.push_back({name, success, [=] { return onRecord(record(), call); }, {}, wanted});
    if (!sql.empty()) made.back().effect = [=] { return rows(sql); };
  };
  const auto insert = &IDBManager::insertData;
  add(
      "insertData of a screen", insert,
      [] { return recordWith<ScreenInfoData>([](auto& r) { r.dbid = 1, r.screenname = "added"; }); },
      "select count(*) > 0 from Screen_Info where screenname = 'added'", "1\n");
  add(
      "updateData of a screen", &IDBManager::updateData,
      [] {
        return recordWith<ScreenInfoData>([](auto& r) { r.id = 2, r.screenname = "target", setRect(r, kTarget); });
      },
      "select count(*) from Screen_Info where screenname = 'target'", "1\n");
  add(
      "insertData of generic data", insert,
      [this] {
        return recordWith<ConfigData>(
            [this](auto& r) { r.datatype = 1, r.version = "new", r.data = new_.data(), r.dataSize = 32; });
      },
      "select count(*) > 0 from Data where version = 'new'", "1\n");
  add(
      "insertData of a measurement", insert,
      [this] { return recordWith<LumChromaData>([this](auto& r) { r.data = new_.data(), r.dataSize = 32; }); }, "", "",
      19);  // its placement is refused
  add(
      "insertData of a description", insert, [] { return std::make_shared<DBInfo>(); },
      "select count(*) > 1 from DB_Info", "1\n");
  for (const int type : {kDBInfo, kCoefDataResult, kScreenInfoDataResult}) {
    add(
        "queryData of type " + std::to_string(type), &IDBManager::queryData,
        [=] { return std::shared_ptr<DataBase>(manager->createData(type)); }, "", "");
  }
  Operation generic{"queryData of generic data", 0, {}, {}, ""};
  generic.prepare = [this] {
    auto record = recordWith<ConfigData>([](auto& r) { r.datatype = 1; });
    Attempt attempt = onRecord(record, &IDBManager::queryData);
    attempt.verify = [this, record](int code) {
      const std::unique_ptr<unsigned char[]> bytes(record->data);
      EXPECT_TRUE(code != 0 || Bytes(bytes.get(), bytes.get() + record->dataSize) == old_);
    };
    return attempt;
  };
  made.push_back(generic);
  const struct {
    DataType type;
    const char* table;
    int success;
  } cleared[] = {{kCoefData, "Coef", 0},   {kLumChromaData, "LumChromData", 0}, {kScreenInfoData, "", 1},
                 {kDBInfo, "DB_Info", 19}, {kCoefDataResult, "Coef_Info", 0},   {kScreenInfoDataResult, "", 1}};
  for (const auto& c : cleared) {
    const std::string table = c.table;
    add(
        "deleteData of type " + std::to_string(c.type), &IDBManager::deleteData,
        [=] { return std::shared_ptr<DataBase>(manager->createData(c.type)); },
        table.empty() ? "" : "select count(*) from " + table, "0\n", c.success);
    made.back().hidesBlocks =
        *c.table != '\0' && c.type != kLumChromaData;  // without its description, the type is unknown
  }
  return made;
}

}  // namespace tovrtest
