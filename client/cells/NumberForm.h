// How the bytes of a cell read as numbers: their type, scale and unit; as people type it, and as it is stored with a
// block. Also numbers as text.
//
// The library stores bytes and knows no numbers. The form is stored at the end of the block's version text, in
// brackets: "as measured [9 x uint16, scale 1/16384, unit cd/m2]". There it is deleted and copied with the block, the
// library never reads it, and a text that another program wrote there stays in front of it. Generic data would take up
// a type, which hosts number themselves, and outlive the block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberType.h"

namespace tovrdb {

// Stored values are multiplied by times / over.
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
  // The scaled number as text, with enough digits to distinguish it from its neighbours.
  std::string text(double number) const;
};

bool operator==(const NumberForm& one, const NumberForm& other);

// "uint16, scale 1/16384, unit cd/m2"
std::string toText(const NumberForm& form);
// "9 x uint16, scale 1/16384, unit cd/m2", of cells of 18 bytes.
std::string toText(const NumberForm& form, std::int32_t cellBytes);

// The scaled values of numbers at the ends of their type: minimum and maximum of whole numbers, only 0 of floating
// point.
std::vector<double> endsOf(const NumberForm& form);

// What a caller says about the numbers. Overrides the stored form.
struct FormOptions {
  std::optional<NumberType> dtype;
  std::optional<Scale> scale;
  std::optional<std::string> unit;

  bool isGiven() const { return dtype || scale || unit; }
};

// Empty if the type is neither given nor stored. With a type other than the stored one, the stored scale and unit do
// not apply.
std::optional<NumberForm> chosenForm(const FormOptions& options, const std::optional<NumberForm>& kept);

// The two parts of a version text.
struct VersionText {
  std::string text;  // as hosts write it
  std::optional<NumberForm> form;
};

// `form` is empty if it does not describe cells of so many bytes, as after another program replaced the cells.
VersionText splitVersion(const std::string& version, std::int32_t cellBytes);

// The text followed by the form, if there is one. Throws std::invalid_argument, which names both lengths, if the result
// exceeds the column's 60 characters. REQUIRES: a cell is a whole number of the form's values.
std::string joinVersion(const std::string& text, const std::optional<NumberForm>& form, std::int32_t cellBytes);

// The fewest digits that read back as the same number: 16777216, 0.1, 1e+20.
std::string numberText(double value);

// As many decimals as a difference of `step` needs, without trailing zeros; all digits unless `step` is above 0.
std::string numberText(double value, double step);

}  // namespace tovrdb
