#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
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

Bytes keptPayload() {
  Bytes bytes;
  for (int i = 0; i < 64; ++i) bytes.push_back(static_cast<unsigned char>(i * 37 + i / 7));
  rememberPayload(bytes);
  return bytes;
}

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

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

Bytes contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

void writeFile(const std::string& path, const Bytes& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

}  // namespace tovrtest
