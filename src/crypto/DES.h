// DES with keys and initialisation vectors given as texts: the buffer and file operations behind IEncryption.
// See IEncryption for what each operation promises to hosts.
#pragma once

#include <string>

#include "crypto/DESBase.h"

namespace tovr {

class DES : public DESBase {
 public:
  bool encrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const;
  bool decrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const;
  bool encryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const;
  // On purpose the very same operation as decrypt().
  bool decryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) const;

  // Each 512-byte piece is a CBC run of its own that starts from `iv`. Memory use does not grow with the file.
  bool encryptFile(const std::string& key, const std::string& iv, const std::string& path) const;
  bool encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                   const std::string& destination) const;
  bool decryptFile(const std::string& key, const std::string& iv, const std::string& path) const;
  bool decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                   const std::string& destination) const;
};

}  // namespace tovr
