// Decimal texts of a result table to int. A null text (an SQL NULL) has no digits.
#pragma once

namespace tovr {

// Leading white space is skipped, trailing characters are ignored; no digits give 0; a number out of range gives the
// nearest int.
int intOrZero(const char* text);

// The same reading, but throws std::invalid_argument("invalid stoi argument") without digits and
// std::out_of_range("stoi argument out of range"): these exact texts on every platform.
int intOrThrow(const char* text);

}  // namespace tovr
