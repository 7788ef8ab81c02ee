// How a coefficient record finds its screen and its area, and is written or read there.
//
// Databases of type 0 place areas by rectangle, those of type 1 by screen name. Every call reads all screens and all
// areas afresh and decides on what it read; nothing is kept between calls and nothing is rolled back.
#pragma once

#include <vector>

#include "manager/DataRecords.h"
#include "manager/Rectangle.h"
#include "tables/CoefDataTableOperate.h"
#include "tables/ScreenInfoDataTableOperate.h"

namespace tovr {

// The operators that the flows work through, borrowed from the manager. The lists of the writing flows are read
// through instances of their own.
struct CoefOperators {
  CoefDataTableOperate& coefs;
  ScreenInfoDataTableOperate& screens;
  DataTableOperateBase& coefList;
  DataTableOperateBase& screenList;
};

class CoefFlows {
 public:
  explicit CoefFlows(const CoefOperators& operators) : operators_(operators) {}

  // Writes the record's block and placement; sets the record's id (of an area that is taken over), screenid and
  // coefid to what was found or made. 4109, 4110 and 4111: the record does not say enough. 4116: no screen.
  int insertByRectangle(CoefData& record);
  int insertByName(CoefData& record);       // makes the screen when there is none of that name
  int updateByRectangle(CoefData& record);  // 4113: no such area
  int updateByName(CoefData& record);       // 4112: no such screen; 4113: no such area; moves the screen's rectangle

  // Gives the record the cells of its rectangle, in a new array that the caller owns, and the area's identity.
  // Unchanged on failure. 4112, 4113: nothing holds the rectangle; 4109, 4110: the cut-out fails.
  int queryByRectangle(CoefData& record);
  int queryByName(CoefData& record);

 private:
  int takeOver(CoefData& record, const CoefData& area, int screenid);
  int addArea(CoefData& record, int screenid);
  int addScreenAndArea(CoefData& record);
  int rewriteScreen(const CoefData& record, int screenid);
  int readArea(CoefData& record, const CoefData& area);

  CoefOperators operators_;
};

}  // namespace tovr
