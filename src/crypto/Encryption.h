// The class behind "cpp.Encryption": forwards every request to the DES object it owns.
#pragma once

#include <memory>

#include "crypto/DES.h"
#include "crypto/IEncryption.h"
#include "plugin/IMessageHandler.h"

namespace tovr {

class Encryption final : public IEncryption, public lmx::IMessageHandler {
 public:
  using Bytes = IEncryption::Bytes;

  Encryption();

  // The object behind `service` where this library made it; null for any other, a host's own or another copy of the
  // library's. Safe with every object: asks for no type information, which one of another compiler may lack.
  static Encryption* own(IEncryption& service);

  // The key that `key` stands for, ready for use without further calls of the service; it outlives both.
  std::shared_ptr<const DESKey> ready(const std::string& key) const;

  bool encrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) override;
  bool decrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) override;
  bool encryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) override;
  bool decryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) override;
  bool encryptFile(const std::string& key, const std::string& iv, const std::string& path) override;
  bool encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                   const std::string& destination) override;
  bool decryptFile(const std::string& key, const std::string& iv, const std::string& path) override;
  bool decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                   const std::string& destination) override;

  int handleMessage(lmx::IMessage* message) override;

 private:
  std::unique_ptr<DES> des_;
};

}  // namespace tovr
