// This program's operator new and the engine's allocator, which fail where they are told to; and an eye on what is
// released.
#pragma once

#include <string>

#include "tests/support/FaultPoints.h"

namespace tovrtest {

// The points of both allocators. A point of operator new that fails throws std::bad_alloc.
FaultPoints& allocations();

// Whether the engine took this allocator.
bool engineAllocatesHere();

// Whether the engine's allocations are points too.
void setEngineFails(bool fails);

// Counts the blocks of memory that are released with `secret` in them from now on; an empty one ends it.
void watchReleases(const std::string& secret);
int releasesSeen();

}  // namespace tovrtest
