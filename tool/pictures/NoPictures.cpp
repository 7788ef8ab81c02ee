// Replaces the drawing of pictures if the program is built without Pango.
#include "client/base/Error.h"
#include "tool/pictures/HeatmapPicture.h"

namespace tovrdb::tool {

std::vector<unsigned char> drawSheet(const Sheet& /*sheet*/) {
  throw Error(kInvalid, "this build of tovrdb draws no pictures: it was built without Pango");
}

}  // namespace tovrdb::tool
