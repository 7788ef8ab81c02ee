// The operator of "Data", generic blobs, and "DataInfo", which gives each blob its data type.
#pragma once

#include "storage/DataTableOperateBase.h"

namespace tovr {

struct ConfigData;

// Works on ConfigData records: null gives 4097, a record of another class 4096.
class DataTableOperate : public DataTableOperateBase {
 public:
  int createTables() override;  // "Data", then "DataInfo"
  // The first blob of the record's data type: `data` gets a new buffer made with new[] that the caller owns and
  // delete[]s (the old pointer is overwritten, not freed), `dataSize` its length. 4097 when no such data is stored;
  // 4106, with the record unchanged, when the blob does not decipher; 0, unchanged, when the blob's row is missing.
  int query(DataBase* record) override;
  // Replaces every blob of the record's data type. The screen stored with it is the one "Screen_Info" issued last.
  int insert(DataBase* record) override;
  int deleteAll(DataBase* record) override;  // does nothing and returns 0
  int update(DataBase* record) override;     // does nothing and returns 0

 private:
  int lookupInfo(const ConfigData& record);
  int deleteInfoByType(int datatype);
  int deleteDataById(int id);
  int insertDataRow(const ConfigData& record);
  int insertInfoRow(const ConfigData& record, const std::string& screenid, int dataid);
  int readDataRow(ConfigData& record);

  // What the last lookup found, in the order of the query: the blobs' keys and the rows' own.
  std::vector<int> dataIds;
  std::vector<int> infoIds;
};

}  // namespace tovr
