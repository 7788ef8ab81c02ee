// The bytes that the tests store and compare, and files of them.
#pragma once

#include <string>
#include <vector>

namespace tovrtest {

using Bytes = std::vector<unsigned char>;

// Bytes that only the seed tells: a payload, which SecretWatch remembers.
Bytes pattern(std::size_t size, unsigned int seed);

// A payload of capital letters: what text mode and a cut at zero bytes leave alone.
Bytes letters(std::size_t size, unsigned int seed);

// The payload of the databases in tests/data/files.
Bytes keptPayload();

Bytes bytesOf(const std::string& text);

// From pairs of hexadecimal digits.
Bytes hex(const std::string& digits);

// Padded with zeros to whole cipher blocks.
Bytes zeroPadded(Bytes bytes);

// The file's content; fails the test where it cannot be opened.
Bytes contentOf(const std::string& path);
void writeFile(const std::string& path, const Bytes& content);

}  // namespace tovrtest
