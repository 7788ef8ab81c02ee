#include "client/contents/HostData.h"

#include <fmt/core.h>

#include <memory>

#include "client/base/Error.h"
#include "client/contents/StoredBlob.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {

namespace {

StoredData readData(tovr::IDBOperate& connection) {
  return {columnNumber(connection, 0), columnText(connection, 1), columnNumber(connection, 2),
          columnNumber(connection, 3), columnText(connection, 4), columnText(connection, 5),
          columnText(connection, 6)};
}

StoredMeasurement readMeasurement(tovr::IDBOperate& connection) {
  StoredMeasurement measurement;
  measurement.id = columnNumber(connection, 0);
  measurement.storedBytes = columnNumber(connection, 1);
  measurement.version = columnText(connection, 2);
  measurement.type = columnText(connection, 3);
  const bool isPlaced = columnNumber(connection, 4) != 0;
  if (isPlaced) {
    measurement.rect =
        Rect{connection.column_int(5), connection.column_int(6), connection.column_int(7), connection.column_int(8)};
  }
  return measurement;
}

}  // namespace

std::vector<StoredData> storedData(Session& session) {
  return collectRows(session.connection(),
                     "select i.id, i.datatype, i.dataid, length(d.data), d.version, s.screenname, i.mtime"
                     " from DataInfo i left join Data d on d.id = i.dataid"
                     " left join Screen_Info s on s.id = i.screenid order by i.id",
                     readData);
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

std::string dataText(const StoredData& data) {
  return fmt::format("type {}, {} stored bytes, of {}", data.type, data.storedBytes, data.changed);
}

// Files that other programs made may have no counter; then no key was issued.
std::int64_t lastScreenKey(Session& session) {
  return queryNumber(session.connection(), "select seq from sqlite_sequence where name = 'Screen_Info'");
}

std::vector<StoredMeasurement> storedMeasurements(Session& session) {
  return collectRows(session.connection(),
                     "select d.id, length(d.data), d.version, i.datatype, i.id is not null, i.left, i.top, i.right,"
                     " i.bottom from LumChromData d left join LumChromDataInfo i on i.dataid = d.id order by d.id",
                     readMeasurement);
}

std::int64_t countMeasurements(Session& session) {
  return queryNumber(session.connection(), "select count(*) from LumChromData");
}

Bytes getMeasurement(Session& session, std::int64_t id) {
  const auto blob = queryPayload(session, kMeasurementTable, id);
  if (!blob) {
    throw statusError(tovr::kNoData, fmt::format("no measurement has the key {}", id))
        .suggest(Remedy::kListMeasurements);
  }
  return decipherBlob(session.host().encryption(), *blob);
}

}  // namespace tovrdb
