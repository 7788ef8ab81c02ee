// The operator of "DB_Info", which describes the file itself, and "Attach_DB_List", the parents of the screens.
#pragma once

#include "storage/DataTableOperateBase.h"

namespace tovr {

struct DBInfo;

class DBDataTableOperate : public DataTableOperateBase {
 public:
  int getDbType() override;               // of the first row; 2 without one or on any failure
  int createTables() override;            // both
  int query(DataBase* record) override;   // a DBInfo (else 4096) from the first row; without one it is unchanged
  int insert(DataBase* record) override;  // a DBInfo into both tables; null: 4097
  int deleteAll(DataBase* record) override;
  int update(DataBase* record) override;  // does nothing and returns 0

 private:
  int insertInfo(const DBInfo& info);
  int insertAttached(const DBInfo& info);
};

}  // namespace tovr
