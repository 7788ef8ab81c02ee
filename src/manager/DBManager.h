// The class behind "cpp.DBManager": one table operator per record type, and the routing of every request to it.
#pragma once

#include <map>
#include <memory>

#include "manager/CoefFlows.h"
#include "manager/IDBManager.h"
#include "storage/DataTableOperateBase.h"

namespace tovr {

class DBManager final : public IDBManager {
 public:
  // Makes the seven operators, which find or create the host's services. Opens no file.
  DBManager();

  int openDB(std::string path, std::string key) override;
  int closeDB() override;
  int createTables() override;
  int getDBType() override;
  DataBase* createData(int type) override;
  int queryData(DataBase* record) override;
  int insertData(DataBase* record) override;
  int deleteData(DataBase* record) override;
  int updateData(DataBase* record) override;
  const char* errMsg() override;
  bool checkDB(std::string path) override;

 private:
  DataTableOperateBase* findOperator(int key) const;  // null when there is none
  CoefFlows flows();

  std::map<int, std::shared_ptr<DataTableOperateBase>> operators;  // by DataType
};

}  // namespace tovr
