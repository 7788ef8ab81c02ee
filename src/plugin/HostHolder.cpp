#include "plugin/HostHolder.h"

namespace tovr {

HostHolder& hostHolder() {
  static HostHolder holder;
  return holder;
}

}  // namespace tovr
