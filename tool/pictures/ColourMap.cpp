#include "tool/pictures/ColourMap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace tovrdb::tool {
namespace {

// viridis, by Nathaniel Smith, Stefan van der Walt and Eric Firing, given to the public domain (CC0): its 256 colours
// rounded to 8 bits each.
// clang-format off
constexpr std::uint32_t kViridis[] = {
    0x440154, 0x440256, 0x450457, 0x450559, 0x46075A, 0x46085C, 0x460A5D, 0x460B5E, 0x470D60, 0x470E61, 0x471063,
    0x471164, 0x471365, 0x481467, 0x481668, 0x481769, 0x48186A, 0x481A6C, 0x481B6D, 0x481C6E, 0x481D6F, 0x481F70,
    0x482071, 0x482173, 0x482374, 0x482475, 0x482576, 0x482677, 0x482878, 0x482979, 0x472A7A, 0x472C7A, 0x472D7B,
    0x472E7C, 0x472F7D, 0x46307E, 0x46327E, 0x46337F, 0x463480, 0x453581, 0x453781, 0x453882, 0x443983, 0x443A83,
    0x443B84, 0x433D84, 0x433E85, 0x423F85, 0x424086, 0x424186, 0x414287, 0x414487, 0x404588, 0x404688, 0x3F4788,
    0x3F4889, 0x3E4989, 0x3E4A89, 0x3E4C8A, 0x3D4D8A, 0x3D4E8A, 0x3C4F8A, 0x3C508B, 0x3B518B, 0x3B528B, 0x3A538B,
    0x3A548C, 0x39558C, 0x39568C, 0x38588C, 0x38598C, 0x375A8C, 0x375B8D, 0x365C8D, 0x365D8D, 0x355E8D, 0x355F8D,
    0x34608D, 0x34618D, 0x33628D, 0x33638D, 0x32648E, 0x32658E, 0x31668E, 0x31678E, 0x31688E, 0x30698E, 0x306A8E,
    0x2F6B8E, 0x2F6C8E, 0x2E6D8E, 0x2E6E8E, 0x2E6F8E, 0x2D708E, 0x2D718E, 0x2C718E, 0x2C728E, 0x2C738E, 0x2B748E,
    0x2B758E, 0x2A768E, 0x2A778E, 0x2A788E, 0x29798E, 0x297A8E, 0x297B8E, 0x287C8E, 0x287D8E, 0x277E8E, 0x277F8E,
    0x27808E, 0x26818E, 0x26828E, 0x26828E, 0x25838E, 0x25848E, 0x25858E, 0x24868E, 0x24878E, 0x23888E, 0x23898E,
    0x238A8D, 0x228B8D, 0x228C8D, 0x228D8D, 0x218E8D, 0x218F8D, 0x21908D, 0x21918C, 0x20928C, 0x20928C, 0x20938C,
    0x1F948C, 0x1F958B, 0x1F968B, 0x1F978B, 0x1F988B, 0x1F998A, 0x1F9A8A, 0x1E9B8A, 0x1E9C89, 0x1E9D89, 0x1F9E89,
    0x1F9F88, 0x1FA088, 0x1FA188, 0x1FA187, 0x1FA287, 0x20A386, 0x20A486, 0x21A585, 0x21A685, 0x22A785, 0x22A884,
    0x23A983, 0x24AA83, 0x25AB82, 0x25AC82, 0x26AD81, 0x27AD81, 0x28AE80, 0x29AF7F, 0x2AB07F, 0x2CB17E, 0x2DB27D,
    0x2EB37C, 0x2FB47C, 0x31B57B, 0x32B67A, 0x34B679, 0x35B779, 0x37B878, 0x38B977, 0x3ABA76, 0x3BBB75, 0x3DBC74,
    0x3FBC73, 0x40BD72, 0x42BE71, 0x44BF70, 0x46C06F, 0x48C16E, 0x4AC16D, 0x4CC26C, 0x4EC36B, 0x50C46A, 0x52C569,
    0x54C568, 0x56C667, 0x58C765, 0x5AC864, 0x5CC863, 0x5EC962, 0x60CA60, 0x63CB5F, 0x65CB5E, 0x67CC5C, 0x69CD5B,
    0x6CCD5A, 0x6ECE58, 0x70CF57, 0x73D056, 0x75D054, 0x77D153, 0x7AD151, 0x7CD250, 0x7FD34E, 0x81D34D, 0x84D44B,
    0x86D549, 0x89D548, 0x8BD646, 0x8ED645, 0x90D743, 0x93D741, 0x95D840, 0x98D83E, 0x9BD93C, 0x9DD93B, 0xA0DA39,
    0xA2DA37, 0xA5DB36, 0xA8DB34, 0xAADC32, 0xADDC30, 0xB0DD2F, 0xB2DD2D, 0xB5DE2B, 0xB8DE29, 0xBADE28, 0xBDDF26,
    0xC0DF25, 0xC2DF23, 0xC5E021, 0xC8E020, 0xCAE11F, 0xCDE11D, 0xD0E11C, 0xD2E21B, 0xD5E21A, 0xD8E219, 0xDAE319,
    0xDDE318, 0xDFE318, 0xE2E418, 0xE5E419, 0xE7E419, 0xEAE51A, 0xECE51B, 0xEFE51C, 0xF1E51D, 0xF4E61E, 0xF6E620,
    0xF8E621, 0xFBE723, 0xFDE725,
};
// clang-format on

// The diverging map is computed after K. Moreland, Diverging Color Maps for Scientific Visualization (2009): CIELAB in
// polar form (magnitude, saturation, hue), from both ends to a white middle.
struct Triple {
  double x = 0;
  double y = 0;
  double z = 0;
};

struct PolarColour {
  double magnitude = 0;
  double saturation = 0;
  double hue = 0;
};

constexpr Colour kCool{59, 76, 192};
constexpr Colour kWarm{180, 4, 38};
constexpr double kMiddleMagnitude = 88.0;
constexpr int kDivergingHalf = 128;  // steps from an end to the middle, which so has a colour of its own

// XYZ of the white point D65.
constexpr Triple kWhite{0.95047, 1.0, 1.08883};

double linear(std::uint8_t channel) {
  const double value = channel / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

std::uint8_t encoded(double value) {
  const double coded = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
  return static_cast<std::uint8_t>(std::lround(std::clamp(coded, 0.0, 1.0) * 255.0));
}

double compressed(double share) { return share > 0.008856 ? std::cbrt(share) : 7.787 * share + 16.0 / 116.0; }

double expanded(double value) { return value > 0.206893 ? value * value * value : (value - 16.0 / 116.0) / 7.787; }

Triple toLab(const Colour& colour) {
  const double r = linear(colour.red);
  const double g = linear(colour.green);
  const double b = linear(colour.blue);
  const double x = compressed((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / kWhite.x);
  const double y = compressed((0.2126729 * r + 0.7151522 * g + 0.0721750 * b) / kWhite.y);
  const double z = compressed((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / kWhite.z);
  return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

Colour fromLab(const Triple& lab) {
  const double y = (lab.x + 16.0) / 116.0;
  const Triple xyz{kWhite.x * expanded(y + lab.y / 500.0), kWhite.y * expanded(y),
                   kWhite.z * expanded(y - lab.z / 200.0)};
  return {encoded(3.2404542 * xyz.x - 1.5371385 * xyz.y - 0.4985314 * xyz.z),
          encoded(-0.9692660 * xyz.x + 1.8760108 * xyz.y + 0.0415560 * xyz.z),
          encoded(0.0556434 * xyz.x - 0.2040259 * xyz.y + 1.0572252 * xyz.z)};
}

PolarColour toPolar(const Triple& lab) {
  const double magnitude = std::hypot(lab.x, lab.y, lab.z);
  return {magnitude, std::acos(lab.x / magnitude), std::atan2(lab.z, lab.y)};
}

Colour fromPolar(const PolarColour& polar) {
  const double chroma = polar.magnitude * std::sin(polar.saturation);
  return fromLab(
      {polar.magnitude * std::cos(polar.saturation), chroma * std::cos(polar.hue), chroma * std::sin(polar.hue)});
}

// The hue that white takes beside `colour`, turned so that the way there looks even. REQUIRES: darker than the middle.
double hueOfWhite(const PolarColour& colour) {
  const double turn = colour.saturation *
                      std::sqrt(kMiddleMagnitude * kMiddleMagnitude - colour.magnitude * colour.magnitude) /
                      (colour.magnitude * std::sin(colour.saturation));
  return colour.hue > -std::acos(-1.0) / 3.0 ? colour.hue + turn : colour.hue - turn;
}

// From `end` (0) to the middle (1).
Colour between(const Colour& end, double share) {
  const PolarColour from = toPolar(toLab(end));
  return fromPolar({from.magnitude + share * (std::max({from.magnitude, kMiddleMagnitude}) - from.magnitude),
                    from.saturation * (1.0 - share), from.hue + share * (hueOfWhite(from) - from.hue)});
}

std::vector<Colour> viridis() {
  std::vector<Colour> colours;
  for (const std::uint32_t rgb : kViridis) {
    colours.push_back({static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8 & 0xFF),
                       static_cast<std::uint8_t>(rgb & 0xFF)});
  }
  return colours;
}

std::vector<Colour> coolToWarm() {
  std::vector<Colour> colours;
  for (int i = -kDivergingHalf; i <= kDivergingHalf; ++i) {
    colours.push_back(between(i < 0 ? kCool : kWarm, 1.0 - std::abs(i) / static_cast<double>(kDivergingHalf)));
  }
  return colours;
}

}  // namespace

ColourMap::ColourMap(Palette palette) : colours_(palette == Palette::kSequential ? viridis() : coolToWarm()) {}

const Colour& ColourMap::at(double position) const {
  const double last = static_cast<double>(colours_.size() - 1);
  return colours_[static_cast<std::size_t>(std::lround(std::clamp(position, 0.0, 1.0) * last))];
}

}  // namespace tovrdb::tool
