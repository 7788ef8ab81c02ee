#include "crypto/WipedBuffer.h"

#include <openssl/crypto.h>

namespace tovr {

void wipe(void* bytes, std::size_t size) { OPENSSL_cleanse(bytes, size); }

WipedBuffer::~WipedBuffer() {
  bytes.resize(bytes.capacity());  // what lies behind the end was in use before; takes no memory
  wipe(bytes.data(), bytes.size());
}

}  // namespace tovr
