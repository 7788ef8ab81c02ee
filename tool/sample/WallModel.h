// A model of an LED wall and of the camera that measures it: the correction matrix of every cell.
//
// Nothing is measured. Every cell is a function of (parameters, x, y) alone, so any part of a wall can be computed
// without the rest and is the same to the byte.
#pragma once

#include <Eigen/Core>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tovrdb::tool {

struct WallParameters {
  std::int32_t columns = 1920;
  std::int32_t rows = 1080;
  std::int32_t cabinetColumns = 160;
  std::int32_t cabinetRows = 180;
  std::uint64_t seed = 1;
};

// A correction matrix in row-major order, each element in unsigned Q2.14: 16384 is 1.0, the largest is 3.99994.
// Row i says how much of the target's red, green and blue the LED i of the cell gives.
using CellCoefficients = std::array<std::uint16_t, 9>;

constexpr double kFixedPointOne = 16384.0;

class WallModel {
 public:
  explicit WallModel(const WallParameters& parameters);

  // inverse(measured) * target. REQUIRES: the cell lies on the wall.
  Eigen::Matrix3d correction(std::int32_t x, std::int32_t y) const;

  // The same in fixed point, rounded to nearest; negative elements become 0, since an LED cannot emit negative light.
  static CellCoefficients fixedPoint(const Eigen::Matrix3d& correction);

 private:
  Eigen::Matrix3d measured(std::int32_t x, std::int32_t y) const;
  double seamGain(std::int32_t x, std::int32_t y) const;
  double cameraGain(std::int32_t x, std::int32_t y) const;

  WallParameters wall_;
  Eigen::Vector3d nominal_;  // luminances at full drive that make white of luminance 1
  Eigen::Matrix3d target_;   // columns: XYZ of the target's red, green and blue
};

// Appends the elements of a cell, little-endian.
void appendBytes(const CellCoefficients& cell, std::vector<unsigned char>& bytes);

// Statistics of correction matrices, for a reader who wonders whether they make sense.
class WallFigures {
 public:
  void add(const Eigen::Matrix3d& correction);
  // The drive of each LED at white, and how many cells the model cannot correct. REQUIRES: a matrix was added.
  std::string text() const;

 private:
  Eigen::Vector3d minimum_ = Eigen::Vector3d::Constant(1e9);
  Eigen::Vector3d maximum_ = Eigen::Vector3d::Constant(-1e9);
  Eigen::Vector3d sum_ = Eigen::Vector3d::Zero();
  std::size_t cells_ = 0;
  std::size_t beyond_ = 0;   // need more than full drive
  std::size_t clipped_ = 0;  // need negative light
};

}  // namespace tovrdb::tool
