#include "tests/support/SecretWatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace tovrtest {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kKeys = {
    std::string(kRawKey).substr(2, 64),
    {"\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F", 16},  // the same, in bytes
    kWordKey,
    "brimstoquelvard",
    "kelptarn",
};

constexpr std::size_t kRemembered = 48;
constexpr std::size_t kTelling = 16;

std::vector<std::string> payloads;

bool holds(const std::string& bytes, const std::vector<std::string>& secrets) {
  return std::any_of(secrets.begin(), secrets.end(),
                     [&](const std::string& secret) { return bytes.find(secret) != std::string::npos; });
}

}  // namespace

void rememberPayload(const std::vector<unsigned char>& payload) {
  if (payload.size() < kTelling) return;
  payloads.emplace_back(payload.begin(), payload.begin() + kTelling);
  if (payloads.size() > kRemembered) payloads.erase(payloads.begin());
}

void expectNoSecrets(const std::string& bytes, const std::string& where, Payload payload) {
  EXPECT_FALSE(holds(bytes, kKeys)) << "a key in " << where;
  if (payload == Payload::kAskedFor) return;
  EXPECT_FALSE(holds(bytes, payloads)) << "a payload in " << where;
}

void expectNoSecretsIn(const fs::path& folder, const std::set<std::string>& written) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().lexically_relative(folder).string();
    if (!entry.is_regular_file() || written.count(name) == 1) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    const bool database = name.find(".db") != std::string::npos;
    expectNoSecrets({std::istreambuf_iterator<char>(file), {}}, name,
                    database ? Payload::kForbidden : Payload::kAskedFor);
  }
}

}  // namespace tovrtest
