// NumPy's .npy files, versions 1.0 to 3.0, as far as blocks of cells need them: little-endian numbers in C order, kept
// as bytes. The format is that of NumPy Enhancement Proposal 1 and of the documentation of numpy.lib.format.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "client/cells/NumberType.h"

namespace tovrdb {

struct NpyArray {
  NumberType dtype = NumberType::kUint8;
  std::vector<std::size_t> shape;
  std::vector<unsigned char> bytes;  // exactly as many as shape and dtype say
};

// The array in the bytes of a file. Throws Error, which names `name`, if they are not such an array: truncated, too
// long, in Fortran order, big-endian, or of another kind of type.
NpyArray parseNpy(std::vector<unsigned char> file, const std::string& name);

// The header of a file of version 1.0; its length is a multiple of 64.
// REQUIRES: at most 32 dimensions.
std::string npyHeader(NumberType dtype, const std::vector<std::size_t>& shape);

// "(64, 128, 9)"
std::string shapeText(const std::vector<std::size_t>& shape);

}  // namespace tovrdb
