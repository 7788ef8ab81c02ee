// Reads keys from a file, the environment or a prompt; never from the command line, which other users can see.
#pragma once

#include <string>

namespace tovrdb::tool {

enum class KeyUse { kOpen, kCreate };

// How a person can give a key.
struct KeyKind {
  const char* option;
  const char* variable;
  const char* prompt;
};
constexpr KeyKind kPageKey{"--key-file", "TOVRDB_KEY", "Key"};
constexpr KeyKind kNewPageKey{"--new-key-file", "TOVRDB_NEW_KEY", "New key"};
constexpr KeyKind kCipherKey{"--cipher-key-file", "TOVRDB_CIPHER_KEY", "Cipher key"};

// The first line of `keyFile` if that is not empty, else the kind's environment variable, else a prompt on a terminal
// (for kCreate twice). Throws Error if there is no source, when the file cannot be read, for an empty key, and for a
// variable that ends with a line break.
std::string readKey(const std::string& keyFile, KeyUse use, const KeyKind& kind = kPageKey);

// The first line of `path`, without its line end. Throws Error if it cannot be read, begins with a byte order
// mark, or is not a text.
std::string readKeyFile(const std::string& path);

}  // namespace tovrdb::tool
