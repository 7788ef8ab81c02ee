// Every call of the services fails, and every access to the disk: see OperationSweep.
#include <set>

#include "tests/faults/FaultyVfs.h"
#include "tests/faults/OperationSweep.h"

namespace tovrtest {

bool startsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

class ServiceFaults final : public FaultSource {
 public:
  // Nobody looks at what the binds of a screen's update answer: a name that was not bound is lost.
  explicit ServiceFaults(FaultPoints& points) : points_(points) {
    points.exempt = "bind update Screen_Info set screenname = ?, top = ?, left = ?, bottom = ?, right = ? where id = 2";
  }

  void arm(const Operation&, int point, Failing how) override { points_.arm(point, how); }
  bool disarm() override {
    points_.disarm();
    return points_.met;
  }
  void expectCode(const Operation& operation, int code) override {
    for (const std::string& failure : points_.failures) {
      if (doesNoHarm(operation.name, failure)) continue;
      EXPECT_EQ(code, codeOf(operation.name, failure)) << failure;
      return;
    }
    EXPECT_EQ(code, operation.success);
  }

 private:
  // What hosts know to be without consequences.
  static bool doesNoHarm(const std::string& operation, const std::string& failure) {
    return failure == "finalize select dbtype from DB_Info" ||  // it has been read
           (operation == "checkDB" && failure == "close") ||
           (operation == "insertData of generic data" &&  // the insertion goes on
            (failure.find("delete from") != std::string::npos || startsWith(failure, "get_table select * from DataI")));
  }
  static int codeOf(const std::string& operation, const std::string& failure) {
    if (failure == "cipher") return kCipherFailed;
    if (endsWith(failure, "select dbtype from DB_Info")) {
      return operation == "getDBType" ? kUnknownDatabaseType : kTypeNotGiven;
    }
    return operation == "checkDB" ? kNotChecked : FaultyConnection::kFault;
  }

  FaultPoints& points_;
};

class DiskFaults final : public FaultSource {
 public:
  explicit DiskFaults(FaultyVfs::Kind kind) : vfs_(kind) {}

  void arm(const Operation&, int point, Failing how) override { vfs_.points().arm(point, how); }
  bool disarm() override {
    vfs_.points().disarm();
    return vfs_.points().met;
  }
  void expectCode(const Operation& operation, int code) override {
    const std::set<int> documented = {operation.success, SQLITE_IOERR,  SQLITE_FULL,
                                      SQLITE_CANTOPEN,   SQLITE_NOTADB, kUnknownDatabaseType,
                                      kTypeNotGiven,     kCipherFailed, kNotChecked};
    EXPECT_EQ(documented.count(code), 1U) << "code " << code;
  }

 private:
  FaultyVfs vfs_;
};

using FaultTest = OperationSweep;

TEST_P(FaultTest, EveryCallOfTheServices) {
  ServiceFaults faults(host.points);
  sweep(faults);
}

TEST_P(FaultTest, EveryReadAndWriteOfTheDisk) {
  DiskFaults faults(FaultyVfs::Kind::kBroken);
  sweep(faults);
}

TEST_P(FaultTest, EveryWriteWithTheDiskFull) {
  DiskFaults faults(FaultyVfs::Kind::kFull);
  sweep(faults);
}

INSTANTIATE_TEST_SUITE_P(DatabaseTypes, FaultTest, testing::Values(kByRectangle, kByName));

}  // namespace tovrtest
