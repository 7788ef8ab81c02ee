#include "client/storing/Changes.h"

#include <fmt/core.h>

#include <map>
#include <utility>

#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

constexpr int kRowRejected = 19;  // how the library answers for a measurement whose blob it has stored

class Application {
 public:
  Application(Session& session, Applied& applied) : session_(session), applied_(applied) {}

  // Each returns the key for Applied::keys.
  std::int64_t operator()(const AddBlock& change) {
    const BlockContent& block = change.block;
    return addAreaRows(session_, block.screenId != 0 ? block.screenId : addedScreens_.at(block.place.screen), block);
  }
  std::int64_t operator()(const RewriteBlock& change) {
    rewriteAreaRows(session_, change.area, change.block);
    return change.area.blockId;
  }
  std::int64_t operator()(const UpdateBlock& change) { return updateByLibrary(session_, change.area, change.block); }
  std::int64_t operator()(const PatchBlock& change) {
    patchArea(session_, change.area, change.patches);
    return change.area.blockId;
  }
  std::int64_t operator()(const DeleteAreas& change) {
    deleteAreaRows(session_, change.areas);
    return 0;
  }

  std::int64_t operator()(const AddScreen& change) {
    const auto screen = session_.host().makeRecord<tovr::ScreenInfoData>();
    screen->dbid = static_cast<std::int32_t>(change.databaseId);
    screen->screenname = change.name;
    setRect(*screen, change.rect);
    insert(*screen);
    return addedScreens_[change.name] = lastScreenKey(session_);
  }
  std::int64_t operator()(const RenameScreen& change) {
    const auto screen = session_.host().makeRecord<tovr::ScreenInfoData>();
    screen->id = static_cast<std::int32_t>(change.screen.id);
    screen->screenname = change.name;
    setRect(*screen, change.screen.rect);
    session_.require(session_.manager().updateData(screen.get()));
    return change.screen.id;
  }
  std::int64_t operator()(const DeleteScreen& change) {
    exec(fmt::format("delete from Screen_Info where id = {}", change.screen.id));
    return 0;
  }

  // The library files data under the key that the table of screens issued last. No key may be issued twice, so the
  // counter is set back afterwards.
  std::int64_t operator()(PutData& change) {
    const auto record = session_.host().makeRecord<tovr::ConfigData>();
    record->datatype = change.type;
    record->version = change.version;
    record->data = change.payload.data();
    record->dataSize = static_cast<std::uint32_t>(change.payload.size());
    const std::int64_t issued = lastScreenKey(session_);
    if (change.screenId != issued) setLastKey("Screen_Info", change.screenId);
    insert(*record);
    if (change.screenId != issued) setLastKey("Screen_Info", issued);
    return 0;
  }
  std::int64_t operator()(const DeleteData& change) {
    exec(fmt::format("delete from DataInfo where id = {}", change.data.id));
    exec(
        fmt::format("delete from Data where id = {0} and id not in (select dataid from DataInfo)", change.data.blobId));
    return 0;
  }
  std::int64_t operator()(AddMeasurement& change) {
    const auto record = session_.host().makeRecord<tovr::LumChromaData>();
    record->datatype = change.type;
    record->version = change.version;
    setRect(*record, change.rect);
    record->data = change.payload.data();
    record->dataSize = static_cast<std::uint32_t>(change.payload.size());
    const std::int64_t before = lastMeasurementKey();
    const int code = session_.manager().insertData(record.get());
    const std::int64_t key = lastMeasurementKey();
    applied_.placementRejected = code == kRowRejected && key > before;
    if (!applied_.placementRejected) session_.require(code);
    return key;
  }
  std::int64_t operator()(const DeleteMeasurements&) {
    const auto record = session_.host().makeRecord<tovr::LumChromaData>();
    session_.require(session_.manager().deleteData(record.get()));
    return 0;
  }

  std::int64_t operator()(const CreateTables&) {
    session_.require(session_.manager().createTables());
    return 0;
  }
  std::int64_t operator()(const AddDescription& change) {
    const auto info = session_.host().makeRecord<tovr::DBInfo>();
    info->dbtype = change.description.type;
    info->dbname = change.description.name;
    info->datastructversion = change.description.structureVersion;
    info->softwareversion = change.description.softwareVersion;
    info->softwaretype = change.description.softwareType;
    info->dbversion = change.description.databaseVersion;
    insert(*info);
    return 0;
  }
  std::int64_t operator()(const ImportRows& change) {
    insertRows(session_.connection(), change.table, *change.rows, change.readBlob, change.afterRow);
    return 0;
  }
  std::int64_t operator()(const SetLastKeys& change) {
    exec("delete from sqlite_sequence");
    for (const auto& [table, key] : change.keys) setLastKey(table, key);
    return 0;
  }

 private:
  void insert(tovr::DataBase& record) { session_.require(session_.manager().insertData(&record)); }
  void exec(const std::string& sql) { session_.require(session_.connection().exec(sql.c_str())); }

  // REQUIRES: `table` is one of the nine.
  void setLastKey(const std::string& table, std::int64_t key) {
    exec(
        fmt::format("delete from sqlite_sequence where name = '{0}';"
                    " insert into sqlite_sequence(name, seq) values ('{0}', {1})",
                    table, key));
  }
  std::int64_t lastMeasurementKey() {
    return queryNumber(session_.connection(), "select seq from sqlite_sequence where name = 'LumChromData'");
  }

  Session& session_;
  Applied& applied_;
  std::map<std::string, std::int64_t> addedScreens_;  // by name
};

}  // namespace

Applied applyChanges(Session& session, const std::function<ChangePlan(Session&)>& plan) {
  Transaction transaction(session);
  ChangePlan planned = plan(session);
  Applied applied;
  Application application(session, applied);
  for (Change& change : planned.changes) applied.keys.push_back(std::visit(application, change));
  applied.notices = std::move(planned.notices);
  applied.state = session.state();
  transaction.commit();
  return applied;
}

}  // namespace tovrdb
