// The bytes of cells as numbers.
#pragma once

#include <cstddef>

#include "tool/cells/NpyFile.h"

namespace tovrtool {

// `count` numbers of type `dtype`, each `stride` bytes after the one before it. Whole numbers beyond 2^53 are rounded.
void readNumbers(const Dtype& dtype, const unsigned char* first, std::size_t stride, std::size_t count,
                 double* numbers);

}  // namespace tovrtool
