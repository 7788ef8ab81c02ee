#include "tests/faults/FaultyVfs.h"

#include <map>

namespace tovrtest {
namespace {

// Files are the real ones, with other methods: what faulty methods stand for, by their address.
struct Methods {
  sqlite3_io_methods faulty;
  const sqlite3_io_methods* real;
};

FaultyVfs* living = nullptr;

const sqlite3_io_methods& realOf(sqlite3_file* file) { return *reinterpret_cast<const Methods*>(file->pMethods)->real; }

bool breaks() { return living->kind() == FaultyVfs::Kind::kBroken && living->points().fails(); }

int read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset) {
  return breaks() ? SQLITE_IOERR_READ : realOf(file).xRead(file, bytes, length, offset);
}

int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
  if (!living->points().fails()) return realOf(file).xWrite(file, bytes, length, offset);
  realOf(file).xWrite(file, bytes, length / 2, offset);
  return living->kind() == FaultyVfs::Kind::kFull ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
  return breaks() ? SQLITE_IOERR_TRUNCATE : realOf(file).xTruncate(file, size);
}

const sqlite3_io_methods* faultyFor(const sqlite3_io_methods* real) {
  static std::map<const sqlite3_io_methods*, Methods> known;
  Methods& methods = known.emplace(real, Methods{*real, real}).first->second;
  methods.faulty.iVersion = 1;  // no shared memory and no mapping, so every access goes through read and write
  methods.faulty.xRead = read;
  methods.faulty.xWrite = write;
  methods.faulty.xTruncate = truncate;
  return &methods.faulty;
}

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  if (breaks()) return SQLITE_CANTOPEN;
  const int result = living->real()->xOpen(living->real(), name, file, flags, outFlags);
  if (file->pMethods != nullptr) file->pMethods = faultyFor(file->pMethods);
  return result;
}

int remove(sqlite3_vfs*, const char* name, int syncFolder) {
  return breaks() ? SQLITE_IOERR_DELETE : living->real()->xDelete(living->real(), name, syncFolder);
}

}  // namespace

FaultyVfs::FaultyVfs(Kind kind) : kind_(kind), real_(sqlite3_vfs_find(nullptr)), faulty_(*real_) {
  living = this;
  faulty_.zName = "faulty";
  faulty_.xOpen = open;
  faulty_.xDelete = remove;
  sqlite3_vfs_register(&faulty_, 1);
}

FaultyVfs::~FaultyVfs() {
  sqlite3_vfs_unregister(&faulty_);
  sqlite3_vfs_register(real_, 1);
}

}  // namespace tovrtest
