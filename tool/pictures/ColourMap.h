// Colours for numbers: perceptually uniform palettes, in which equal steps of a value look equal.
#pragma once

#include <cstdint>
#include <vector>

namespace tovrdb::tool {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  bool operator==(const Colour& other) const { return red == other.red && green == other.green && blue == other.blue; }
};

enum class Palette {
  kSequential,  // viridis: for values; lightness rises from end to end
  kDiverging    // cool to warm: for differences; lightest in the middle, which is to be zero
};

class ColourMap {
 public:
  explicit ColourMap(Palette palette);
  // 0 is the first colour, 1 the last; positions beyond them get the colour of that end. REQUIRES: not NaN.
  const Colour& at(double position) const;

 private:
  std::vector<Colour> colours_;
};

}  // namespace tovrdb::tool
