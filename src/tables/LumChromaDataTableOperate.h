// The operator of "LumChromData", measurement blobs, and "LumChromDataInfo", their placement on a screen.
#pragma once

#include "storage/DataTableOperateBase.h"

namespace tovr {

struct LumChromaData;

// Works on LumChromaData records: null gives 4097, a record of another class 4096.
class LumChromaDataTableOperate : public DataTableOperateBase {
 public:
  int createTables() override;  // "LumChromData", then "LumChromDataInfo"
  // Prints the placement rows of the record's rectangle and type, and a hex dump of the blob with key 1. Fills nothing.
  int query(DataBase* record) override;
  // Stores the blob; its placement row is rejected with 19 (constraint): the blob stays, under the key that
  // getSequence("LumChromData") gives next.
  int insert(DataBase* record) override;
  int deleteAll(DataBase* record) override;  // empties both tables and restarts their keys
  int update(DataBase* record) override;     // completes with 0 and changes nothing

 private:
  int insertBlob(const LumChromaData& record);
  int insertPlacement(const LumChromaData& record, int dataid);
  void dumpFirstBlob();
};

}  // namespace tovr
