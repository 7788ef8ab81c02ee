// The numbers that hosts compare with: the one place where the tests write them.
#include <gtest/gtest.h>
#include <sqlcipher/sqlite3.h>

#include "storage/IDBOperate.h"
#include "storage/StatusCodes.h"

namespace tovrtest {

using namespace tovr;

TEST(StatusCodesTest, EveryCodeHasItsNumber) {
  EXPECT_EQ(kOk, 0);
  EXPECT_EQ(kUnknownDatabaseType, 2);
  EXPECT_EQ(kNoConnection, 4096);
  EXPECT_EQ(kInvalidRecord, 4096);
  EXPECT_EQ(kNoRecord, 4097);
  EXPECT_EQ(kNoData, 4097);
  EXPECT_EQ(kNoOperator, 4104);
  EXPECT_EQ(kCipherFailed, 4106);
  EXPECT_EQ(kRectangleRefused, 4109);
  EXPECT_EQ(kBlockTooSmall, 4110);
  EXPECT_EQ(kScreenNameMissing, 4110);
  EXPECT_EQ(kTypeNotGiven, 4111);
  EXPECT_EQ(kNoSuchScreenName, 4112);
  EXPECT_EQ(kNoMatchingArea, 4113);
  EXPECT_EQ(kNoScreenForRectangle, 4116);
  EXPECT_EQ(kStepRow, SQLITE_ROW);
  EXPECT_EQ(kStepDone, SQLITE_DONE);
}

}  // namespace tovrtest
