#include "tests/faults/FaultyAllocator.h"

#include <malloc.h>
#include <sqlcipher/sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace tovrtest {
namespace {

const char* watchedBytes = nullptr;
std::size_t watchedLength = 0;
int seen = 0;

sqlite3_mem_methods engineMethods;
bool engineFails = true;

bool failsInEngine() { return engineFails && allocations().fails(); }

void* engineAllocate(int size) { return failsInEngine() ? nullptr : engineMethods.xMalloc(size); }

void* engineReallocate(void* block, int size) {
  return failsInEngine() ? nullptr : engineMethods.xRealloc(block, size);
}

// Before main: the engine takes another allocator only as long as nothing has been opened.
const bool installed = [] {
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &engineMethods);
  sqlite3_mem_methods faulty = engineMethods;
  faulty.xMalloc = engineAllocate;
  faulty.xRealloc = engineReallocate;
  return sqlite3_config(SQLITE_CONFIG_MALLOC, &faulty) == SQLITE_OK;
}();

void* allocate(std::size_t size) noexcept {
  return allocations().fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void release(void* block) noexcept {
  if (block != nullptr && watchedLength > 0 &&
      memmem(block, malloc_usable_size(block), watchedBytes, watchedLength) != nullptr) {
    ++seen;
  }
  std::free(block);
}

}  // namespace

FaultPoints& allocations() {
  static FaultPoints points;
  return points;
}

bool engineAllocatesHere() { return installed; }

void setEngineFails(bool fails) { engineFails = fails; }

void watchReleases(const std::string& secret) {
  static char bytes[64];
  watchedLength = secret.copy(bytes, sizeof bytes);
  watchedBytes = bytes;
  seen = 0;
}

int releasesSeen() { return seen; }

}  // namespace tovrtest

void* operator new(std::size_t size) {
  void* block = tovrtest::allocate(size);
  return block != nullptr ? block : throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tovrtest::allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tovrtest::allocate(size); }
void operator delete(void* block) noexcept { tovrtest::release(block); }
void operator delete[](void* block) noexcept { tovrtest::release(block); }
void operator delete(void* block, std::size_t) noexcept { tovrtest::release(block); }
void operator delete[](void* block, std::size_t) noexcept { tovrtest::release(block); }
