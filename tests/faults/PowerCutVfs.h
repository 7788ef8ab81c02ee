// A file system under the engine whose files are on a VolatileDisk. While one lives, it is the engine's default.
#pragma once

#include <sqlcipher/sqlite3.h>

#include <functional>

#include "tests/faults/VolatileDisk.h"

namespace tovrtest {

class PowerCutVfs {
 public:
  PowerCutVfs();
  PowerCutVfs(const PowerCutVfs&) = delete;
  PowerCutVfs& operator=(const PowerCutVfs&) = delete;
  // REQUIRES: every connection that was opened meanwhile is closed.
  ~PowerCutVfs();

  // May be exchanged while no connection is open.
  VolatileDisk disk;
  // Called before a sync of a file or of the names takes effect.
  std::function<void()> beforeSync;

 private:
  sqlite3_vfs* real_;
  sqlite3_vfs volatile_;
};

}  // namespace tovrtest
