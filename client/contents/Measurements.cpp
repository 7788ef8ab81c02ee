#include "client/contents/Measurements.h"

#include <fmt/core.h>

#include "client/base/Error.h"
#include "client/contents/StoredBlob.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

constexpr int kRowRejected = 19;  // how the library answers for a measurement whose blob it has stored

std::int64_t lastKey(Session& session) {
  return queryNumber(session.connection(), "select seq from sqlite_sequence where name = 'LumChromData'");
}

}  // namespace

std::vector<StoredMeasurement> storedMeasurements(Session& session) {
  std::vector<StoredMeasurement> found;
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection,
            "select d.id, length(d.data), d.version, i.datatype, i.id is not null, i.left, i.top, i.right, i.bottom"
            " from LumChromData d left join LumChromDataInfo i on i.dataid = d.id order by d.id",
            [&] {
              StoredMeasurement& measurement = found.emplace_back();
              measurement.id = columnNumber(connection, 0);
              measurement.storedBytes = columnNumber(connection, 1);
              measurement.version = columnText(connection, 2);
              measurement.type = columnText(connection, 3);
              if (columnNumber(connection, 4) == 0) return;
              measurement.rect = Rect{connection.column_int(5), connection.column_int(6), connection.column_int(7),
                                      connection.column_int(8)};
            });
  return found;
}

std::int64_t countMeasurements(Session& session) {
  return queryNumber(session.connection(), "select count(*) from LumChromData");
}

MeasurementReport putMeasurement(Session& session, std::int32_t type, const Rect& rect, const std::string& version,
                                 Bytes payload) {
  Transaction transaction(session);
  const std::int64_t before = lastKey(session);
  const auto record = session.host().makeRecord<tovr::LumChromaData>();
  record->datatype = type;
  record->version = version;
  setRect(*record, rect);
  record->data = payload.data();
  record->dataSize = static_cast<std::uint32_t>(payload.size());
  const int code = session.manager().insertData(record.get());
  const std::int64_t key = lastKey(session);
  const bool rejected = code == kRowRejected && key > before;
  if (!rejected) session.require(code);
  transaction.commit();
  return {key, rejected};
}

Bytes getMeasurement(Session& session, std::int64_t id) {
  const auto blob = queryPayload(session, kMeasurementTable, id);
  if (!blob) {
    throw statusError(tovr::kNoData, fmt::format("no measurement has the key {}", id))
        .suggest(Remedy::kListMeasurements);
  }
  return decipherBlob(session.host().encryption(), *blob);
}

void clearMeasurements(Session& session) {
  const auto record = session.host().makeRecord<tovr::LumChromaData>();
  Transaction transaction(session);
  session.require(session.manager().deleteData(record.get()));
  transaction.commit();
}

}  // namespace tovrdb
