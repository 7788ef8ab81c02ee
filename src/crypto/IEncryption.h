// The service "cpp.Encryption": DES in CBC mode with zero padding, over buffers and files.
//
// Hosts call by position: slot order is part of the contract. Append, never insert. Microsoft's compiler lays out
// a group of overloads in reverse order of declaration, so the two file pairs are declared in the order that gives
// the same slots on every compiler.
// Keys and initialisation vectors are 8 characters: shorter ones are extended with zero bytes, longer ones cut.
// Buffer operations may run on any thread. All results: true on success; the output is untouched on failure.
#pragma once

#include <string>
#include <vector>

#include "plugin/CompilerFamily.h"

namespace tovr {

class IEncryption {
 public:
  using Bytes = std::vector<unsigned char>;

  virtual ~IEncryption() = default;  // slot 0

  // `output` is resized to the input's length, rounded up to a multiple of 8; the last block is filled with zeros.
  virtual bool encrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) = 0;  // slot 1
  // `output` is resized to the input's length; zero padding stays in it.
  virtual bool decrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) = 0;  // slot 2
  // As encrypt and decrypt; the names are kept for hosts that pass short keys.
  virtual bool encryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input,
                                Bytes& output) = 0;  // slot 3
  virtual bool decryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input,
                                Bytes& output) = 0;  // slot 4

  // Files, 512 bytes at a time, written to `destination` + ".temp" and then moved. Existing destinations stay (the
  // new content is then left under the ".temp" name and the result is true); in place, the source is replaced.
  // Made for text: deciphering cuts each 512-byte piece at its first zero byte, and the plaintext side is opened in
  // the platform's text mode. False: a file could not be opened, read or written, or the source itself is the ".temp"
  // file, under whatever name; the source is untouched.
#if defined(_MSC_VER)
  virtual bool encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                           const std::string& destination) = 0;                                          // slot 6
  virtual bool encryptFile(const std::string& key, const std::string& iv, const std::string& path) = 0;  // slot 5
  virtual bool decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                           const std::string& destination) = 0;                                          // slot 8
  virtual bool decryptFile(const std::string& key, const std::string& iv, const std::string& path) = 0;  // slot 7
#else
  virtual bool encryptFile(const std::string& key, const std::string& iv, const std::string& path) = 0;  // slot 5
  virtual bool encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                           const std::string& destination) = 0;                                          // slot 6
  virtual bool decryptFile(const std::string& key, const std::string& iv, const std::string& path) = 0;  // slot 7
  virtual bool decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                           const std::string& destination) = 0;  // slot 8
#endif
};

}  // namespace tovr
