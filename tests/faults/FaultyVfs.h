// A file system under the engine that forwards to the real one and fails where it is told to. While one lives, it is
// the engine's default; files that were opened before are not affected.
#pragma once

#include <sqlcipher/sqlite3.h>

#include "tests/support/FaultPoints.h"

namespace tovrtest {

class FaultyVfs {
 public:
  enum class Kind {
    kBroken,  // opening, reading, writing, truncating and deleting fail
    kFull,    // writing fails, half way through
  };

  explicit FaultyVfs(Kind kind);
  FaultyVfs(const FaultyVfs&) = delete;
  FaultyVfs& operator=(const FaultyVfs&) = delete;
  // REQUIRES: every connection that was opened meanwhile is closed.
  ~FaultyVfs();

  FaultPoints& points() { return points_; }
  Kind kind() const { return kind_; }
  sqlite3_vfs* real() const { return real_; }

 private:
  Kind kind_;
  FaultPoints points_;
  sqlite3_vfs* real_;
  sqlite3_vfs faulty_;
};

}  // namespace tovrtest
