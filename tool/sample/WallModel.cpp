#include "tool/sample/WallModel.h"

#include <fmt/format.h>

#include <Eigen/LU>
#include <algorithm>
#include <cmath>

#include "client/base/Text.h"

namespace tovrdb::tool {
namespace {

using Chromaticity = Eigen::Vector2d;  // CIE 1931 x, y

enum Color : int { kRed = 0, kGreen = 1, kBlue = 2 };

// The purpose of a hash, so that each purpose gets independent numbers.
enum Use : std::uint64_t {
  kModuleWavelength = 1,
  kModuleLuminance = 2,
  kCellWavelength = 3,
  kCellLuminance = 4,
  kSeamLeft = 5,
  kSeamTop = 6,
  kCabinetGain = 7,
};

// The D65 white point and the primaries of IEC 61966-2-1 (those of ITU-R BT.709). Every LED of the model reaches them.
const Chromaticity kWhite(0.3127, 0.3290);
const Chromaticity kTargetPrimaries[3] = {{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}};

// The target gives up this share of the nominal luminance, so that the dimmest cells still reach it.
constexpr double kTargetLuminance = 0.70;

// The spectral locus of the CIE 1931 2-degree observer, three points per colour, 5 nm apart.
constexpr double kLocusStep = 5.0;
const Chromaticity kLocus[3][3] = {
    {{0.6915, 0.3083}, {0.7006, 0.2993}, {0.7079, 0.2920}},  // 620, 625, 630 nm
    {{0.0743, 0.8338}, {0.1142, 0.8262}, {0.1547, 0.8059}},  // 520, 525, 530 nm
    {{0.1510, 0.0227}, {0.1440, 0.0297}, {0.1355, 0.0399}},  // 455, 460, 465 nm
};

// Excitation purity: how far from white to the locus an LED of ordinary width lies.
constexpr double kPurity[3] = {0.98, 0.84, 0.99};

// Bins, as makers sort LEDs by dominant wavelength and luminous intensity; a module is filled from one bin.
constexpr double kWavelengthBins[3] = {-1.5, 0.0, 1.5};  // nm
constexpr double kLuminanceBins[3] = {0.95, 1.0, 1.05};
constexpr double kWavelengthSpread = 0.5;  // nm, within a bin
constexpr double kLuminanceSpread = 0.025;
constexpr double kCabinetSpread = 0.015;  // power supply and temperature
constexpr double kSeamSpread = 0.04;      // a gap wider or narrower than the pitch looks darker or brighter

// The camera stands as far away as half the wall's diagonal times this. Most of its lens's natural vignetting,
// cos^4 of the angle from the axis, is divided out by its own flat field; this share remains.
constexpr double kCameraDistance = 2.5;
constexpr double kVignettingLeft = 0.3;

constexpr std::int32_t kModulesPerCabinetSide = 2;

// The output function of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014), here
// as a counter-based hash: mixed once per input word.
std::uint64_t mix(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15U;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
  return value ^ (value >> 31);
}

std::uint64_t hash(std::uint64_t seed, Use use, int color, std::int32_t x, std::int32_t y) {
  const auto word = static_cast<std::uint64_t>(static_cast<std::uint32_t>(x)) << 32 | static_cast<std::uint32_t>(y);
  return mix(mix(mix(seed) ^ (use << 8 | static_cast<std::uint64_t>(color))) ^ word);
}

// Close to a normal deviate, bounded by +-3.47: the sum of four uniform 16-bit numbers, scaled to deviation 1.
double deviate(std::uint64_t bits) {
  double sum = 0;
  for (int i = 0; i < 4; ++i) sum += static_cast<double>(bits >> (16 * i) & 0xFFFFU);
  return (sum / 65535.0 - 2.0) * 1.7320508075688772;
}

double binned(const double (&bins)[3], std::uint64_t bits) { return bins[bits % 3]; }

// The locus `shift` nm away from a colour's middle wavelength, linear between the points.
Chromaticity onLocus(int color, double shift) {
  const double steps = std::clamp(shift / kLocusStep, -1.0, 1.0);
  const Chromaticity& end = steps < 0 ? kLocus[color][0] : kLocus[color][2];
  return kLocus[color][1] + std::abs(steps) * (end - kLocus[color][1]);
}

Chromaticity ledChromaticity(int color, double shift) {
  return kWhite + kPurity[color] * (onLocus(color, shift) - kWhite);
}

// XYZ of a light of luminance 1.
Eigen::Vector3d unitXyz(const Chromaticity& at) {
  return Eigen::Vector3d(at.x(), at.y(), 1.0 - at.x() - at.y()) / at.y();
}

// The luminances of three primaries whose sum is white of luminance 1 (SMPTE RP 177).
Eigen::Vector3d whiteBalance(const Eigen::Matrix3d& primaries) { return primaries.inverse() * unitXyz(kWhite); }

// Columns: XYZ of the three primaries that together make white of luminance 1.
Eigen::Matrix3d balanced(const Eigen::Matrix3d& primaries) { return primaries * whiteBalance(primaries).asDiagonal(); }

template <class ChromaticityOf>
Eigen::Matrix3d unitPrimaries(ChromaticityOf chromaticityOf) {
  Eigen::Matrix3d primaries;
  for (int color = kRed; color <= kBlue; ++color) primaries.col(color) = unitXyz(chromaticityOf(color));
  return primaries;
}

Eigen::Vector3d nominalLuminances() {
  return whiteBalance(unitPrimaries([](int color) { return ledChromaticity(color, 0.0); }));
}

}  // namespace

WallModel::WallModel(const WallParameters& parameters)
    : wall_(parameters),
      nominal_(nominalLuminances()),
      target_(kTargetLuminance * balanced(unitPrimaries([](int color) { return kTargetPrimaries[color]; }))) {}

Eigen::Matrix3d WallModel::correction(std::int32_t x, std::int32_t y) const {
  return measured(x, y).inverse() * target_;
}

CellCoefficients WallModel::fixedPoint(const Eigen::Matrix3d& correction) {
  CellCoefficients cell = {};
  for (int i = 0; i < 9; ++i) {
    const double scaled = std::floor(correction(i / 3, i % 3) * kFixedPointOne + 0.5);
    cell[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(std::clamp(scaled, 0.0, 65535.0));
  }
  return cell;
}

// Columns: XYZ of the cell's red, green and blue LED at full drive, as the camera sees them.
Eigen::Matrix3d WallModel::measured(std::int32_t x, std::int32_t y) const {
  const std::int32_t moduleX = x / std::max(1, wall_.cabinetColumns / kModulesPerCabinetSide);
  const std::int32_t moduleY = y / std::max(1, wall_.cabinetRows / kModulesPerCabinetSide);
  const double gain = seamGain(x, y) * cameraGain(x, y);
  Eigen::Matrix3d seen;
  for (int color = kRed; color <= kBlue; ++color) {
    const auto ofModule = [&](Use use) { return hash(wall_.seed, use, color, moduleX, moduleY); };
    const auto ofCell = [&](Use use) { return deviate(hash(wall_.seed, use, color, x, y)); };
    const double shift =
        binned(kWavelengthBins, ofModule(kModuleWavelength)) + kWavelengthSpread * ofCell(kCellWavelength);
    const double luminance = nominal_[color] * gain * binned(kLuminanceBins, ofModule(kModuleLuminance)) *
                             (1.0 + kLuminanceSpread * ofCell(kCellLuminance));
    seen.col(color) = luminance * unitXyz(ledChromaticity(color, shift));
  }
  return seen;
}

// The cabinet's own level, and on its outer cells the gap to the neighbour: both sides of a gap see the same.
double WallModel::seamGain(std::int32_t x, std::int32_t y) const {
  const std::int32_t cabinetX = x / wall_.cabinetColumns;
  const std::int32_t cabinetY = y / wall_.cabinetRows;
  const auto gap = [&](Use use, std::int32_t atX, std::int32_t atY) {
    return 1.0 + kSeamSpread * deviate(hash(wall_.seed, use, 0, atX, atY));
  };
  double gain = 1.0 + kCabinetSpread * deviate(hash(wall_.seed, kCabinetGain, 0, cabinetX, cabinetY));
  if (x > 0 && x % wall_.cabinetColumns == 0) gain *= gap(kSeamLeft, cabinetX, cabinetY);
  if (y > 0 && y % wall_.cabinetRows == 0) gain *= gap(kSeamTop, cabinetX, cabinetY);
  if (x + 1 < wall_.columns && (x + 1) % wall_.cabinetColumns == 0) gain *= gap(kSeamLeft, cabinetX + 1, cabinetY);
  if (y + 1 < wall_.rows && (y + 1) % wall_.cabinetRows == 0) gain *= gap(kSeamTop, cabinetX, cabinetY + 1);
  return gain;
}

double WallModel::cameraGain(std::int32_t x, std::int32_t y) const {
  const double halfWidth = wall_.columns / 2.0;
  const double halfHeight = wall_.rows / 2.0;
  const double offAxisSquared =
      (x + 0.5 - halfWidth) * (x + 0.5 - halfWidth) + (y + 0.5 - halfHeight) * (y + 0.5 - halfHeight);
  const double distanceSquared = kCameraDistance * kCameraDistance * (halfWidth * halfWidth + halfHeight * halfHeight);
  const double cosineSquared = distanceSquared / (distanceSquared + offAxisSquared);
  return 1.0 - kVignettingLeft * (1.0 - cosineSquared * cosineSquared);
}

void appendBytes(const CellCoefficients& cell, std::vector<unsigned char>& bytes) {
  for (const std::uint16_t number : cell) {
    bytes.push_back(static_cast<unsigned char>(number & 0xFF));
    bytes.push_back(static_cast<unsigned char>(number >> 8));
  }
}

void WallFigures::add(const Eigen::Matrix3d& correction) {
  const Eigen::Vector3d white = correction.rowwise().sum();  // the drive of each LED when the cell shows white
  minimum_ = minimum_.cwiseMin(white);
  maximum_ = maximum_.cwiseMax(white);
  sum_ += white;
  ++cells_;
  if (white.maxCoeff() > 1.0) ++beyond_;
  if (correction.minCoeff() < 0.0) ++clipped_;
}

std::string WallFigures::text() const {
  const Eigen::Vector3d mean = sum_ / static_cast<double>(cells_);
  const char* const names[3] = {"red", "green", "blue"};
  std::vector<std::string> drives;
  for (int i = 0; i < 3; ++i) {
    drives.push_back(fmt::format("{} {:.3f} ({:.3f} to {:.3f})", names[i], mean[i], minimum_[i], maximum_[i]));
  }
  return fmt::format("LED drive at white: {}; out of reach: {}, in need of negative light: {}", fmt::join(drives, ", "),
                     counted(beyond_, "cell"), counted(clipped_, "cell"));
}

}  // namespace tovrdb::tool
