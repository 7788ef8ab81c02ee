// What a page keeps of a picture: large grids of numbers made smaller, and numbers as levels of 8 or 16 bits, in text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tovrdb::tool {

struct ReducedNumbers {
  std::int64_t columns = 0;  // of blocks
  std::int64_t rows = 0;
  std::vector<double> least;  // row after row; NaN where a block has no finite number
  std::vector<double> mean;
  std::vector<double> most;
};

// `block` cells a side; blocks at the right and the lower edge may be cut short.
// REQUIRES: columns x rows numbers, row after row; block >= 1.
ReducedNumbers reduceBlocks(const std::vector<double>& numbers, std::int64_t columns, std::int64_t rows,
                            std::int64_t block);

// Number i is offset + step * level i. Levels are little-endian, row after row.
struct Levels {
  int bits = 0;  // of a level; 0: all numbers are `offset`, and no level is kept
  double offset = 0;
  double step = 1;
  bool exact = true;   // else the nearest level counts, no farther away than half a step
  std::string levels;  // packedText() of them
  std::string absent;  // packedText() of one bit per number, set where it is none (or infinite); empty where all are
};

// Whole numbers that are close enough together are kept exactly. What lies beyond 1e300 counts as that. REQUIRES:
// `mostBits` is 8 or 16.
Levels levelsOf(const std::vector<double>& numbers, int mostBits);

// Bytes in base 85 with the digits of RFC 1924, four bytes as five of them, the most significant first; filled up with
// zeros to a multiple of four. A comma stands for the digit '<', which pages take for the beginning of something else.
std::string packedText(const std::vector<unsigned char>& bytes);

// The characters of the text of so many bytes.
constexpr std::size_t packedSize(std::size_t bytes) { return (bytes + 3) / 4 * 5; }

// One bit per value, the lowest of a byte first.
std::vector<unsigned char> bitsOf(const std::vector<bool>& values);

}  // namespace tovrdb::tool
