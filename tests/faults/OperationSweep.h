// Every operation of the manager on a prepared database, with something below it failing at point 1, 2, 3 and so on,
// until it passes: once at that point only, once from there on. After each: what the caller was told is so, nothing
// stored before is lost, and the next operation works.
#pragma once

#include <deque>

#include "tests/support/Fixture.h"

namespace tovrtest {

constexpr int kThrown = -1;      // the operation threw std::bad_alloc
constexpr int kNotChecked = -2;  // checkDB answered false

// One call of the manager: what it needs is made before faults are armed, what it left is looked at after.
struct Attempt {
  std::function<int(IDBManager&)> act;
  std::function<void(int code)> verify = [](int) {};  // looks at the record
};

struct Operation {
  std::string name;
  std::function<Attempt()> prepare;
  int success = kOk;                           // its code where nothing fails
  std::function<void()> expectEffect = [] {};  // what a success has changed in the file
  bool leavesFile = false;                     // another file is open afterwards, or none
  bool derivesKey = false;                     // gives a file its page key
  bool hidesBlocks = false;                    // deletes what it takes to read them
};

// Where faults come from.
class FaultSource {
 public:
  virtual ~FaultSource() = default;
  virtual void arm(const Operation& operation, int point, Failing how) = 0;
  virtual bool disarm() = 0;  // whether any has come
  // Expects the code that the operation is to answer to the faults that came.
  virtual void expectCode(const Operation& operation, int code) = 0;
};

class OperationSweep : public DatabaseTest, public testing::WithParamInterface<int> {  // by database type
 protected:
  void SetUp() override;
  void sweep(FaultSource& source);

 private:
  using Call = int (IDBManager::*)(DataBase*);
  using Record = std::shared_ptr<DataBase>;

  Operation& add(const std::string& name, const std::function<int(IDBManager&)>& act);
  Operation& add(const std::string& name, Call call, const std::function<Record()>& makeRecord);
  // Expects a number that is read from the file.
  std::function<void()> found(const std::string& sql, int wanted);
  void addFileOperations();
  void addStoring(const std::string& name, Call call, const Rect& rect, const std::string& screen, int areaid);
  void addBlockOperations();
  void addReadings();
  void addTableOperations();
  void addDeletions();

  bool meetsFault(const Operation& operation, FaultSource& source, int point, Failing how);
  void openFresh();
  void reopen();
  void expectWhole(bool blocksHidden);

  Bytes kept_ = pattern(32, 1);
  Bytes old_ = pattern(32, 2);
  Bytes new_ = pattern(32, 3);
  std::deque<Operation> operations_;
};

}  // namespace tovrtest
