// What nothing printed and nothing left behind may hold: the keys that the tests use, and the payloads that they store.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace tovrtest {

// A raw page key: opening a file with it derives nothing and is fast.
constexpr char kRawKey[] = "x'000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F'";

// A key of words, which the tool's tests give.
constexpr char kWordKey[] = "the test key";

// Payloads are known by their first bytes; the last few dozen are remembered.
void rememberPayload(const std::vector<unsigned char>& payload);

// Fails the current test where `bytes`, which come from `where`, hold a key or, unless it was asked for, a payload.
enum class Payload { kForbidden, kAskedFor };
void expectNoSecrets(const std::string& bytes, const std::string& where, Payload payload = Payload::kForbidden);

// Every file of a folder but those that the test wrote itself. Databases and their journals hold no payload either.
void expectNoSecretsIn(const std::filesystem::path& folder, const std::set<std::string>& written = {});

}  // namespace tovrtest
