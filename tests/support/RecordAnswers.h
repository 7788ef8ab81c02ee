// What a manager without an open file, or without services, answers to a record of every type.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "manager/IDBManager.h"
#include "storage/StatusCodes.h"

namespace tovrtest {

// `refused`: the code of whatever needs the connection.
inline void expectEveryRecordRefused(tovr::IDBManager& manager, int refused) {
  using namespace tovr;
  const struct {
    DataType type;
    int query, insert, update, remove;
  } cases[] = {{kCoefData, kTypeNotGiven, kTypeNotGiven, kTypeNotGiven, refused},
               {kLumChromaData, kOk, refused, kOk, refused},
               {kScreenInfoData, kInvalidRecord, refused, refused, refused},
               {kConfigData, refused, refused, kOk, kOk},
               {kDBInfo, refused, refused, kOk, refused},
               {kCoefDataResult, refused, kOk, kInvalidRecord, refused},
               {kScreenInfoDataResult, refused, kOk, kOk, refused}};
  for (const auto& c : cases) {
    const std::unique_ptr<DataBase> record(manager.createData(c.type));
    EXPECT_EQ(manager.queryData(record.get()), c.query) << c.type;
    EXPECT_EQ(manager.insertData(record.get()), c.insert) << c.type;
    EXPECT_EQ(manager.updateData(record.get()), c.update) << c.type;
    EXPECT_EQ(manager.deleteData(record.get()), c.remove) << c.type;
  }
}

}  // namespace tovrtest
