#include "tests/faults/FaultyVfs.h"

namespace tovrtest {
namespace {

// The engine allocates one of these with room for the real file behind it.
struct FaultyFile {
  sqlite3_file base;
  FaultyVfs* owner;
};

FaultyVfs& ownerOf(sqlite3_file* file) { return *reinterpret_cast<FaultyFile*>(file)->owner; }

FaultyVfs& ownerOf(sqlite3_vfs* vfs) { return *static_cast<FaultyVfs*>(vfs->pAppData); }

sqlite3_file* realOf(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(reinterpret_cast<FaultyFile*>(file) + 1);
}

bool breaks(FaultyVfs& vfs) { return vfs.kind() == FaultyVfs::Kind::kBroken && vfs.points().fails(); }

int read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset) {
  return breaks(ownerOf(file)) ? SQLITE_IOERR_READ : realOf(file)->pMethods->xRead(realOf(file), bytes, length, offset);
}

int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
  const auto& real = *realOf(file)->pMethods;
  if (!ownerOf(file).points().fails()) return real.xWrite(realOf(file), bytes, length, offset);
  real.xWrite(realOf(file), bytes, length / 2, offset);
  return ownerOf(file).kind() == FaultyVfs::Kind::kFull ? SQLITE_FULL : SQLITE_IOERR_WRITE;
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
  return breaks(ownerOf(file)) ? SQLITE_IOERR_TRUNCATE : realOf(file)->pMethods->xTruncate(realOf(file), size);
}

int closeFile(sqlite3_file* file) { return realOf(file)->pMethods->xClose(realOf(file)); }
int sync(sqlite3_file* file, int flags) { return realOf(file)->pMethods->xSync(realOf(file), flags); }
int fileSize(sqlite3_file* file, sqlite3_int64* size) { return realOf(file)->pMethods->xFileSize(realOf(file), size); }
int lock(sqlite3_file* file, int level) { return realOf(file)->pMethods->xLock(realOf(file), level); }
int unlock(sqlite3_file* file, int level) { return realOf(file)->pMethods->xUnlock(realOf(file), level); }
int reserved(sqlite3_file* file, int* result) {
  return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}
int control(sqlite3_file* file, int code, void* argument) {
  return realOf(file)->pMethods->xFileControl(realOf(file), code, argument);
}
int sectorSize(sqlite3_file* file) { return realOf(file)->pMethods->xSectorSize(realOf(file)); }
int device(sqlite3_file* file) { return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file)); }

// Version 1: no shared memory and no mapping, so every access goes through read and write.
const sqlite3_io_methods kMethods = {1,       closeFile, read,     write,   truncate,   sync,   fileSize,
                                     lock,    unlock,    reserved, control, sectorSize, device, nullptr,
                                     nullptr, nullptr,   nullptr,  nullptr, nullptr};

int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  FaultyVfs& owner = ownerOf(vfs);
  file->pMethods = nullptr;
  if (breaks(owner)) return SQLITE_CANTOPEN;
  reinterpret_cast<FaultyFile*>(file)->owner = &owner;
  const int result = owner.real()->xOpen(owner.real(), name, realOf(file), flags, outFlags);
  if (realOf(file)->pMethods != nullptr) file->pMethods = &kMethods;
  return result;
}

int remove(sqlite3_vfs* vfs, const char* name, int syncFolder) {
  FaultyVfs& owner = ownerOf(vfs);
  return breaks(owner) ? SQLITE_IOERR_DELETE : owner.real()->xDelete(owner.real(), name, syncFolder);
}

}  // namespace

FaultyVfs::FaultyVfs(Kind kind) : kind_(kind), real_(sqlite3_vfs_find(nullptr)), faulty_(*real_) {
  faulty_.zName = "faulty";
  faulty_.pAppData = this;
  faulty_.szOsFile += static_cast<int>(sizeof(FaultyFile));
  faulty_.xOpen = open;
  faulty_.xDelete = remove;
  sqlite3_vfs_register(&faulty_, 1);
}

FaultyVfs::~FaultyVfs() {
  sqlite3_vfs_unregister(&faulty_);
  sqlite3_vfs_register(real_, 1);
}

}  // namespace tovrtest
