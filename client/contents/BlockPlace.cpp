#include "client/contents/BlockPlace.h"

#include "client/base/Error.h"

namespace tovrdb {

void requireSuits(const AreaName& area, int databaseType) {
  if (databaseType == 1 && area.screen.empty()) {
    throw Error(kInvalid, "the database finds screens by name (type 1), and none was given")
        .suggest(Remedy::kGiveScreen);
  }
  if (databaseType == 0 && !area.screen.empty()) {
    throw Error(kInvalid, "the database finds screens by rectangle (type 0), not by name").suggest(Remedy::kOmitScreen);
  }
}

}  // namespace tovrdb
