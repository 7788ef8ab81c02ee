// How the bytes of a cell read as numbers: their type, a scale and a unit; as it is typed, and as it is kept with a
// block.
//
// The library stores bytes and knows no numbers. The form stands at the end of the block's version text, in brackets:
// "as measured [9 x uint16, scale 1/16384, unit cd/m2]". There it lives and dies with the block, every copy takes it
// along, the library never reads that text of a block, and what another program wrote there stays in front. Generic
// data would take one of the types that hosts number among themselves, and outlive the block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberType.h"

namespace tovrdb {

// A number counts as `times` / `over` of itself.
struct Scale {
  double times = 1;
  double over = 1;
  std::string text = "1";  // as it was given

  double of(double number) const { return number * times / over; }
};

// "1/16384" or "0.5", finite and above 0. Throws std::invalid_argument with the reason otherwise.
Scale parseScale(const std::string& text);

// Text without brackets and control characters. Throws std::invalid_argument with the reason otherwise.
std::string parseUnit(const std::string& text);

struct NumberForm {
  NumberType dtype = NumberType::kUint8;
  Scale scale;
  std::string unit;

  bool isScaled() const { return scale.times != scale.over; }
  // The scaled number as text, with the digits that tell it from its neighbours.
  std::string text(double number) const;
};

bool operator==(const NumberForm& one, const NumberForm& other);

// "uint16, scale 1/16384, unit cd/m2"
std::string toText(const NumberForm& form);
// "9 x uint16, scale 1/16384, unit cd/m2", of cells of 18 bytes.
std::string toText(const NumberForm& form, std::int32_t cellBytes);

// What numbers that hit an end look like, scaled: 0 and the largest; of types with a sign the smallest and the largest;
// of floating point 0 only.
std::vector<double> endsOf(const NumberForm& form);

// What a command line says about the numbers. It goes before what is kept.
struct FormOptions {
  std::optional<NumberType> dtype;
  std::optional<Scale> scale;
  std::optional<std::string> unit;

  bool isGiven() const { return dtype || scale || unit; }
};

// Nothing where the type is neither given nor kept. Another type than the kept one brings its own scale and unit.
std::optional<NumberForm> chosenForm(const FormOptions& options, const std::optional<NumberForm>& kept);

// A version text in its two parts.
struct VersionText {
  std::string text;  // as hosts write it
  std::optional<NumberForm> form;
};

// `form` stays empty where it does not describe cells of so many bytes, as after another program replaced the cells.
VersionText splitVersion(const std::string& version, std::int32_t cellBytes);

// The text with the form, if there is one. Throws std::invalid_argument, which tells both lengths, if that is longer
// than the column's 60 characters. REQUIRES: a cell is a whole number of the form's values.
std::string joinVersion(const std::string& text, const std::optional<NumberForm>& form, std::int32_t cellBytes);

// The fewest digits that read back as the same number: 16777216, 0.1, 1e+20.
std::string numberText(double value);

// As many decimals as a difference of `step` takes, without zeros at their end; all digits where `step` is not above 0.
std::string numberText(double value, double step);

}  // namespace tovrdb
