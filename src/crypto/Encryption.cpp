#include "crypto/Encryption.h"

#include "plugin/MessageReply.h"

namespace tovr {

Encryption::Encryption() : des_(std::make_unique<DES>()) {}

bool Encryption::encrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) {
  return des_->encrypt(key, iv, input, output);
}

bool Encryption::decrypt(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) {
  return des_->decrypt(key, iv, input, output);
}

bool Encryption::encryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) {
  return des_->encryptKeyPadded(key, iv, input, output);
}

bool Encryption::decryptKeyPadded(const std::string& key, const std::string& iv, const Bytes& input, Bytes& output) {
  return des_->decryptKeyPadded(key, iv, input, output);
}

bool Encryption::encryptFile(const std::string& key, const std::string& iv, const std::string& path) {
  return des_->encryptFile(key, iv, path);
}

bool Encryption::encryptFile(const std::string& key, const std::string& iv, const std::string& source,
                             const std::string& destination) {
  return des_->encryptFile(key, iv, source, destination);
}

bool Encryption::decryptFile(const std::string& key, const std::string& iv, const std::string& path) {
  return des_->decryptFile(key, iv, path);
}

bool Encryption::decryptFile(const std::string& key, const std::string& iv, const std::string& source,
                             const std::string& destination) {
  return des_->decryptFile(key, iv, source, destination);
}

int Encryption::handleMessage(lmx::IMessage* message) { return handBackMessage(message); }

}  // namespace tovr
