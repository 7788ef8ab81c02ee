#include "client/contents/HostData.h"

#include <fmt/core.h>

#include <algorithm>
#include <memory>

#include "client/base/Error.h"
#include "client/contents/Screens.h"
#include "client/session/LibraryError.h"
#include "storage/StatusCodes.h"

namespace tovrdb {

namespace {

// Of "Screen_Info". Without a counter, as in files that other programs made, no key was issued.
void setLastScreenKey(Session& session, std::int64_t key) {
  session.require(
      session.connection().exec(fmt::format("delete from sqlite_sequence where name = 'Screen_Info';"
                                            " insert into sqlite_sequence(name, seq) values ('Screen_Info', {})",
                                            key)
                                    .c_str()));
}

}  // namespace

std::int64_t lastScreenKey(Session& session) {
  return queryNumber(session.connection(), "select seq from sqlite_sequence where name = 'Screen_Info'");
}

std::vector<StoredData> storedData(Session& session) {
  std::vector<StoredData> found;
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection,
            "select i.id, i.datatype, i.dataid, length(d.data), d.version, s.screenname, i.mtime from DataInfo i"
            " left join Data d on d.id = i.dataid left join Screen_Info s on s.id = i.screenid order by i.id",
            [&] {
              found.push_back({columnNumber(connection, 0), columnText(connection, 1), columnNumber(connection, 2),
                               columnNumber(connection, 3), columnText(connection, 4), columnText(connection, 5),
                               columnText(connection, 6)});
            });
  return found;
}

std::string dataText(const StoredData& data) {
  return fmt::format("type {}, {} stored bytes, of {}", data.type, data.storedBytes, data.changed);
}

std::vector<std::string> putData(Session& session, std::int32_t type, const std::string& version, Bytes payload) {
  const auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = type;
  record->version = version;
  record->data = payload.data();
  record->dataSize = static_cast<std::uint32_t>(payload.size());
  Transaction transaction(session);  // the library deletes the old blob before it stores the new one
  const std::vector<StoredScreen> screens = storedScreens(session);
  if (screens.empty()) {
    throw Error(kRefused, "data belongs to a screen, and the file has none").suggest(Remedy::kAddScreen);
  }
  std::vector<std::string> notices;
  for (const StoredData& data : storedData(session)) {
    if (data.type == std::to_string(type)) notices.push_back("replaced the data of " + dataText(data));
  }
  const std::int64_t issued = lastScreenKey(session);
  const auto isLast = [&](const StoredScreen& screen) { return screen.id == issued; };
  const bool orphaned = std::none_of(screens.begin(), screens.end(), isLast);
  if (orphaned) {
    notices.push_back(fmt::format("note: the screen that was added last is deleted; the data belongs to the screen {}",
                                  screens.back().name));
    setLastScreenKey(session, screens.back().id);
  }
  session.require(session.manager().insertData(record.get()));
  if (orphaned) setLastScreenKey(session, issued);  // keys are not issued twice
  transaction.commit();
  return notices;
}

Bytes getData(Session& session, std::int32_t type) {
  const auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = type;
  const int code = session.manager().queryData(record.get());
  const std::unique_ptr<unsigned char[]> payload(record->data);
  if (code == tovr::kNoData) throw libraryError(code).suggest(Remedy::kListData);
  session.require(code);
  return {payload.get(), payload.get() + record->dataSize};
}

}  // namespace tovrdb
