// The operator of "Screen_Info": one row per screen.
#pragma once

#include "storage/DataTableOperateBase.h"

namespace tovr {

class ScreenInfoDataTableOperate : public DataTableOperateBase {
 public:
  int createTables() override;
  // All screens into a ScreenInfoDataResult (else 4096), each printed as a line; the list is unchanged on failure.
  // Throws std::invalid_argument or std::out_of_range where another program stored something else than an int.
  int query(DataBase* record) override;
  int insert(DataBase* record) override;     // a ScreenInfoData (else 4096); its new key is not read back
  int deleteAll(DataBase* record) override;  // always fails with 1 and deletes nothing
  int update(DataBase* record) override;     // name and rectangle of the row with the ScreenInfoData's id (else 4096)
};

}  // namespace tovr
