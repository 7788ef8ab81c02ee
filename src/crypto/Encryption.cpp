#include "crypto/Encryption.h"

#include <cstring>

#include "crypto/DESSchedule.h"
#include "plugin/MessageReply.h"

namespace tovr {
namespace {

// The address of the object's virtual table: its first word in the Itanium and Microsoft C++ ABIs, though the standard
// does not say so. No two classes share a table, as they have different functions. With another ABI, or tables merged
// or replaced at link or run time, own() could take a host's object for ours; BlobServiceTest has such objects.
const void* virtualTableOf(const IEncryption& service) {
  const void* table = nullptr;
  std::memcpy(&table, static_cast<const void*>(&service), sizeof table);
  return table;
}

}  // namespace

Encryption::Encryption() : des_(std::make_unique<DES>()) {}

Encryption* Encryption::own(IEncryption& service) {
  static const void* const ownTable = virtualTableOf(Encryption());
  return virtualTableOf(service) == ownTable ? static_cast<Encryption*>(&service) : nullptr;
}

std::shared_ptr<const DESKey> Encryption::ready(const std::string& key) const {
  return des_->ready(DESBlock::firstOf(key.data(), key.size()));
}

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
