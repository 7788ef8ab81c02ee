#include "tests/support/Bytes.h"

#include <random>

#include "tests/support/SecretWatch.h"

namespace tovrtest {

Bytes pattern(std::size_t size, unsigned int seed) {
  std::minstd_rand random(seed);
  Bytes bytes(size);
  for (auto& byte : bytes) byte = static_cast<unsigned char>(random() >> 8);
  rememberPayload(bytes);
  return bytes;
}

Bytes letters(std::size_t size, unsigned int seed) {
  Bytes bytes = pattern(size, seed);
  for (auto& byte : bytes) byte = static_cast<unsigned char>('A' + byte % 26);
  rememberPayload(bytes);
  return bytes;
}

Bytes keptPayload(std::size_t size) {
  Bytes bytes;
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(i * 37 + i / 7));
  rememberPayload(bytes);
  return bytes;
}

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

std::string textOf(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

Bytes hex(const std::string& digits) {
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

Bytes zeroPadded(Bytes bytes) {
  bytes.resize((bytes.size() + 7) / 8 * 8);
  return bytes;
}

}  // namespace tovrtest
