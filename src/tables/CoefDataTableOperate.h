// The operator of "Coef", one enciphered block of cells per row, and "Coef_Info", which places a block on a screen.
#pragma once

#include <functional>

#include "storage/DataTableOperateBase.h"

namespace tovr {

class EncipheredBlob;
struct CoefBuffer;
struct CoefData;

class CoefDataTableOperate : public DataTableOperateBase {
 public:
  int createTables() override;  // "Coef", then "Coef_Info"; REQUIRES: "Screen_Info" exists
  // Every "Coef_Info" row, without blocks, into a CoefDataResult (else 4096). A failure after the statement was
  // prepared leaves the rows read so far.
  int query(DataBase* record) override;
  int insert(DataBase* record) override;     // one "Coef_Info" row from a CoefData (else 4096)
  int deleteAll(DataBase* record) override;  // empties both tables and restarts their keys
  int update(DataBase* record) override;     // the "Coef_Info" row with the CoefData's id (else 4096)

  // Appends or rewrites a "Coef" row with the record's block. Null: 4096. 4106 when the block cannot be enciphered.
  // The new row's key is the one that getSequence("Coef") gives next.
  int insertCoef(const CoefData* record);
  int updateCoef(int id, const CoefData* record);  // leaves the row's version text

  // Reads the block of a "Coef" row into a new buffer made with new[], owned by the caller (a previous out->data is
  // overwritten, not freed). 0 with `out` untouched when there is no such row; 4106, with only the cell width
  // written, when the block cannot be deciphered. No flow calls it: they read by visitCoef, which is tested against it.
  int selectCoef(int id, CoefBuffer* out);

  // The same row, read in parts: hands its cell width and its block, still enciphered, to `use`. The result is
  // selectCoef's.
  using BlockReader = std::function<void(int databitwidth, EncipheredBlob& block)>;
  int visitCoef(int id, const BlockReader& use);

 private:
  // Both statements bind the enciphered block and the cell width first; `bindThird` binds what they differ in.
  int writeCoef(const char* sql, const CoefData* record, const StatementStep& bindThird);
};

}  // namespace tovr
