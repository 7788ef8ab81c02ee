#include "crypto/DES.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "crypto/WipedBuffer.h"
#include "platform/FileSystem.h"

namespace tovr {
namespace {

using Bytes = DESBase::Bytes;

constexpr std::size_t kChunkSize = 512;

// The plaintext side is opened in the platform's text mode: that is what the default flags leave out.
constexpr auto kTextMode = std::ios::openmode{};

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

bool cryptCbc(const DESBase& cipher, int direction, const std::string& key, const std::string& iv, const Bytes& input,
              Bytes& output) {
  WipedBuffer keyBytes(key.size());
  keyBytes.bytes.assign(key.begin(), key.end());
  return cipher.crypt(direction, DESBase::kCbc, bytesOf(iv), input, output, keyBytes.bytes);
}

std::string temporaryPath(const std::string& destination) { return destination + ".temp"; }

// Opening the temporary file for writing would empty the source.
bool isItsOwnTemporary(const std::string& source, const std::string& destination) {
  return isSameFile(source, temporaryPath(destination));
}

// Runs `convert` (which returns how many bytes of the output count, or a negative number on failure) over every
// chunk. False where reading, converting or writing failed, or the last bytes could not be handed to the system.
template <class Convert>
bool convertChunks(std::ifstream& source, std::ofstream& target, const Convert& convert) {
  WipedBuffer read(kChunkSize);
  WipedBuffer converted(kChunkSize);
  Bytes& chunk = read.bytes;
  Bytes& output = converted.bytes;
  while (!source.eof()) {
    chunk.resize(kChunkSize);
    source.read(reinterpret_cast<char*>(chunk.data()), static_cast<std::streamsize>(kChunkSize));
    if (source.bad()) return false;  // opens but cannot be read: a directory
    chunk.resize(static_cast<std::size_t>(source.gcount()));
    const std::streamsize length = convert(chunk, output);
    if (length < 0) return false;
    target.write(reinterpret_cast<const char*>(output.data()), length);
  }
  return static_cast<bool>(target.flush());  // before the source may go
}

// Puts the finished temporary file in the destination's place. What remove and rename answer does not matter: an
// existing other destination stays, and the new content with its ".temp" name.
void moveIntoPlace(const std::string& source, const std::string& destination) {
  if (destination == source) static_cast<void>(std::remove(source.c_str()));
  static_cast<void>(renameWithoutReplacing(temporaryPath(destination), destination));
}

}  // namespace

bool DES::encrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const {
  return cryptCbc(*this, kEncrypt, key, iv, input, output);
}

bool DES::decrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const {
  return cryptCbc(*this, kDecrypt, key, iv, input, output);
}

bool DES::encryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const {
  return encrypt(key, iv, input, output);  // the core pads every short key
}

bool DES::decryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const {
  return decrypt(key, iv, input, output);
}

bool DES::encryptFile(const std::string& key, const std::string& iv, const std::string& path) const {
  return encryptFile(key, iv, path, path);
}

bool DES::encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                      const std::string& destination) const {
  if (isItsOwnTemporary(source, destination)) return false;
  std::ifstream plain(source, std::ios::in | kTextMode);
  std::ofstream enciphered(temporaryPath(destination), std::ios::out | std::ios::trunc | std::ios::binary);
  if (!plain.is_open() || !enciphered.is_open()) return false;
  const bool done = convertChunks(plain, enciphered, [&](const Bytes& chunk, Bytes& output) {
    if (!encrypt(key, iv, chunk, output)) return std::streamsize{-1};
    return static_cast<std::streamsize>(output.size());
  });
  if (!done) return false;
  plain.close();
  enciphered.close();
  moveIntoPlace(source, destination);
  return true;
}

bool DES::decryptFile(const std::string& key, const std::string& iv, const std::string& path) const {
  return decryptFile(key, iv, path, path);
}

bool DES::decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                      const std::string& destination) const {
  if (isItsOwnTemporary(source, destination)) return false;
  std::ifstream enciphered(source, std::ios::in | std::ios::binary);
  std::ofstream plain(temporaryPath(destination), std::ios::out | std::ios::trunc | kTextMode);
  if (!enciphered.is_open() || !plain.is_open()) return false;
  const bool done = convertChunks(enciphered, plain, [&](const Bytes& chunk, Bytes& output) {
    if (!decrypt(key, iv, chunk, output)) return std::streamsize{-1};
    // Cut at the first zero byte on purpose: it strips the padding, and the format serves texts.
    return static_cast<std::streamsize>(std::find(output.begin(), output.end(), '\0') - output.begin());
  });
  if (!done) return false;
  enciphered.close();
  plain.close();
  moveIntoPlace(source, destination);
  return true;
}

}  // namespace tovr
