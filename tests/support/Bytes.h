// The bytes that the tests store and compare.
#pragma once

#include <string>
#include <vector>

namespace tovrtest {

using Bytes = std::vector<unsigned char>;

// Bytes that only the seed tells: a payload, which SecretWatch remembers.
Bytes pattern(std::size_t size, unsigned int seed);

// A payload of capital letters: what text mode and a cut at zero bytes leave alone.
Bytes letters(std::size_t size, unsigned int seed);

// The payload of the databases in tests/data/files, or one of another size that goes on like it: without a repetition
// that a wrong offset could hide behind.
Bytes keptPayload(std::size_t size = 64);

Bytes bytesOf(const std::string& text);
std::string textOf(const Bytes& bytes);

// From pairs of hexadecimal digits.
Bytes hex(const std::string& digits);

// Padded with zeros to whole cipher blocks.
Bytes zeroPadded(Bytes bytes);

}  // namespace tovrtest
