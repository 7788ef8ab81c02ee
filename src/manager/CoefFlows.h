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

  // `dbtype` is the database's type: 0 or 1; with 2, which means unknown, the result is 4111; with any other nothing
  // happens and it is 0. A record that does not say enough gives 4109, 4110 or 4111.

  // Write the record's block and placement, and set its id (of an area that is taken over), screenid and coefid to what
  // was found or made.
  // - insert: by rectangle 4116 where no screen holds it; by name the missing screen is made.
  // - update: by rectangle 4116 where it is no screen's; by name 4112 where there is no such screen, else the screen's
  //   rectangle becomes the record's. 4113 where the screen has no area of the type.
  int insert(CoefData& record, int dbtype);
  int update(CoefData& record, int dbtype);

  // Gives the record the cells of its rectangle, in a new array that the caller owns, and the area's identity.
  // Unchanged on failure. 4112, 4113: nothing holds the rectangle; 4109, 4110: the cut-out fails.
  int query(CoefData& record, int dbtype);

 private:
  int insertByRectangle(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int insertByName(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int updateByRectangle(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int updateByName(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int queryByRectangle(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int queryByName(CoefData& record, const std::vector<ScreenInfoData>& screens);
  int updateArea(CoefData& record, int screenid);
  int queryArea(CoefData& record, int screenid);
  int takeOver(CoefData& record, const CoefData& area, int screenid);
  int addArea(CoefData& record, int screenid);
  int addScreenAndArea(CoefData& record);
  int rewriteScreen(const CoefData& record, int screenid);
  int readArea(CoefData& record, const CoefData& area);

  CoefOperators operators_;
};

}  // namespace tovr
