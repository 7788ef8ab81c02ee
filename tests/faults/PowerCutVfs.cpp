#include "tests/faults/PowerCutVfs.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tovrtest {
namespace {

struct OpenFile {
  sqlite3_file base;
  PowerCutVfs* owner;
  int file;
  bool namesSynced;
};

OpenFile& self(sqlite3_file* file) { return *reinterpret_cast<OpenFile*>(file); }

PowerCutVfs& ownerOf(sqlite3_vfs* vfs) { return *static_cast<PowerCutVfs*>(vfs->pAppData); }

VolatileDisk& diskOf(sqlite3_file* file) { return self(file).owner->disk; }

void announceSync(PowerCutVfs& vfs) {
  if (vfs.beforeSync) vfs.beforeSync();
}

int closeFile(sqlite3_file*) { return SQLITE_OK; }

int read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset) {
  const auto& content = diskOf(file).content(self(file).file);
  const auto at = std::min(static_cast<std::size_t>(offset), content.size());
  const auto wanted = static_cast<std::size_t>(length);
  const std::size_t there = std::min(wanted, content.size() - at);
  std::copy_n(content.data() + at, there, static_cast<unsigned char*>(bytes));
  std::memset(static_cast<unsigned char*>(bytes) + there, 0, wanted - there);
  return there == wanted ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
}

int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
  const auto* first = static_cast<const unsigned char*>(bytes);
  diskOf(file).write(self(file).file, static_cast<std::size_t>(offset), {first, first + length});
  return SQLITE_OK;
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
  diskOf(file).truncate(self(file).file, static_cast<std::size_t>(size));
  return SQLITE_OK;
}

// The engine's own file system flushes the folder with the first sync of a journal that it has made.
int sync(sqlite3_file* file, int) {
  announceSync(*self(file).owner);
  diskOf(file).sync(self(file).file);
  if (!self(file).namesSynced) diskOf(file).syncNames();
  self(file).namesSynced = true;
  return SQLITE_OK;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
  *size = static_cast<sqlite3_int64>(diskOf(file).content(self(file).file).size());
  return SQLITE_OK;
}

// One connection at a time: nobody to lock out.
int lock(sqlite3_file*, int) { return SQLITE_OK; }
int reserved(sqlite3_file*, int* result) {
  *result = 0;
  return SQLITE_OK;
}
int control(sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; }
int sectorSize(sqlite3_file*) { return 4096; }
int device(sqlite3_file*) { return SQLITE_IOCAP_POWERSAFE_OVERWRITE; }  // as the engine says of Linux and of Windows

// Version 1: no shared memory and no mapping, so every access goes through read and write.
const sqlite3_io_methods kMethods = {1,       closeFile, read,     write,   truncate,   sync,   fileSize,
                                     lock,    lock,      reserved, control, sectorSize, device, nullptr,
                                     nullptr, nullptr,   nullptr,  nullptr, nullptr};

int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  VolatileDisk& disk = ownerOf(vfs).disk;
  file->pMethods = nullptr;
  if (name == nullptr) return SQLITE_CANTOPEN;  // temporary files stay in memory
  const auto found = disk.find(name);
  const bool makes = !found && (flags & SQLITE_OPEN_CREATE) != 0;
  if (!found && !makes) return SQLITE_CANTOPEN;
  self(file).owner = &ownerOf(vfs);
  self(file).file = makes ? disk.create(name) : *found;
  self(file).namesSynced = !makes || (flags & SQLITE_OPEN_MAIN_JOURNAL) == 0;
  file->pMethods = &kMethods;
  if (outFlags != nullptr) *outFlags = flags;
  return SQLITE_OK;
}

int remove(sqlite3_vfs* vfs, const char* name, int syncFolder) {
  VolatileDisk& disk = ownerOf(vfs).disk;
  if (!disk.find(name)) return SQLITE_IOERR_DELETE_NOENT;
  disk.remove(name);
  if (syncFolder == 0) return SQLITE_OK;
  announceSync(ownerOf(vfs));
  disk.syncNames();
  return SQLITE_OK;
}

int access(sqlite3_vfs* vfs, const char* name, int, int* result) {
  *result = ownerOf(vfs).disk.find(name) ? 1 : 0;
  return SQLITE_OK;
}

}  // namespace

PowerCutVfs::PowerCutVfs() : real_(sqlite3_vfs_find(nullptr)), volatile_(*real_) {
  volatile_.zName = "volatile";
  volatile_.pAppData = this;
  volatile_.szOsFile = static_cast<int>(sizeof(OpenFile));
  volatile_.xOpen = open;
  volatile_.xDelete = remove;
  volatile_.xAccess = access;
  sqlite3_vfs_register(&volatile_, 1);
}

PowerCutVfs::~PowerCutVfs() {
  sqlite3_vfs_unregister(&volatile_);
  sqlite3_vfs_register(real_, 1);
}

}  // namespace tovrtest
