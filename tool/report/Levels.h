// Numbers as a page stores them: large grids reduced to blocks, and numbers as levels of 8 or 16 bits, in text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tovrdb::tool {

struct ReducedNumbers {
  std::int64_t columns = 0;  // of blocks
  std::int64_t rows = 0;
  std::vector<double> least;  // row after row; NaN for a block without finite numbers
  std::vector<double> mean;
  std::vector<double> most;
};

// Blocks have `block` x `block` cells; those at the right and the lower edge may be partial.
// REQUIRES: columns x rows numbers, row after row; block >= 1.
ReducedNumbers reduceBlocks(const std::vector<double>& numbers, std::int64_t columns, std::int64_t rows,
                            std::int64_t block);

// Number i is offset + step * level i. Levels are little-endian, row after row.
struct Levels {
  int bits = 0;  // of a level; 0: all numbers are `offset`, and there are no levels
  double offset = 0;
  double step = 1;
  bool exact = true;   // otherwise rounded to the nearest level, by at most half a step
  std::string levels;  // packedText() of them
  std::string absent;  // packedText() of one bit per number, set if it is not finite; empty if all are finite
};

// Whole numbers whose range is small enough are stored exactly. Numbers beyond 1e300 are stored as 1e300. REQUIRES:
// `mostBits` is 8 or 16.
Levels levelsOf(const std::vector<double>& numbers, int mostBits);

// Bytes in base 85 with the digits of RFC 1924, four bytes as five digits, the most significant first; padded with
// zeros to a multiple of four bytes. A comma replaces the digit '<', which could begin a tag in a page.
std::string packedText(const std::vector<unsigned char>& bytes);

// The length of the packed text of so many bytes.
constexpr std::size_t packedSize(std::size_t bytes) { return (bytes + 3) / 4 * 5; }

// One bit per value, the lowest of a byte first.
std::vector<unsigned char> bitsOf(const std::vector<bool>& values);

}  // namespace tovrdb::tool
