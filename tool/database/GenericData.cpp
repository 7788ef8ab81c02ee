#include "tool/database/GenericData.h"

#include <memory>

#include "storage/StatusCodes.h"
#include "tool/database/Screens.h"
#include "tool/system/ToolError.h"

namespace tovrtool {

std::vector<StoredData> storedData(Session& session) {
  std::vector<StoredData> found;
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection,
            "select i.id, i.datatype, i.dataid, length(d.data), d.version, s.screenname from DataInfo i"
            " left join Data d on d.id = i.dataid left join Screen_Info s on s.id = i.screenid order by i.id",
            [&] {
              found.push_back({columnNumber(connection, 0), columnText(connection, 1), columnNumber(connection, 2),
                               columnNumber(connection, 3), columnText(connection, 4), columnText(connection, 5)});
            });
  return found;
}

void putData(Session& session, std::int32_t type, const std::string& version, Bytes payload) {
  if (storedScreens(session).empty()) {
    throw ToolError(kRefused, "data belongs to a screen, and the file has none: add one with tovrdb screen add");
  }
  const auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = type;
  record->version = version;
  record->data = payload.data();
  record->dataSize = static_cast<std::uint32_t>(payload.size());
  Transaction transaction(session);  // the library deletes the old blob before it stores the new one
  session.require(session.manager().insertData(record.get()));
  transaction.commit();
}

Bytes getData(Session& session, std::int32_t type) {
  const auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = type;
  const int code = session.manager().queryData(record.get());
  const std::unique_ptr<unsigned char[]> payload(record->data);
  session.require(code, code == tovr::kNoData ? "tovrdb data list shows the types" : "");
  return {payload.get(), payload.get() + record->dataSize};
}

}  // namespace tovrtool
