// The floors: the bare C calls of the two engines, doing the same work on the same bytes as the library.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

struct sqlite3;

namespace tovrbench {

// One encrypted file with one payload table, on SQLCipher's C interface, opened as the library opens its files.
class BareFile {
 public:
  BareFile(const std::string& path, const std::string& key);
  void insert(const unsigned char* blob, std::size_t size);
  // The blob of a row, valid inside `use`.
  template <class Use>
  void select(int id, const Use& use);

 private:
  struct Close {
    void operator()(sqlite3* connection) const;
  };
  void exec(const char* sql);
  void selectInto(int id, void (*use)(void*, const unsigned char*, std::size_t), void* context);

  std::unique_ptr<sqlite3, Close> connection_;
};

template <class Use>
void BareFile::select(int id, const Use& use) {
  const auto call = [](void* context, const unsigned char* bytes, std::size_t size) {
    (*static_cast<const Use*>(context))(bytes, size);
  };
  selectInto(id, call, const_cast<Use*>(&use));
}

// DES_ncbc_encrypt over `length` bytes (a multiple of 8), with the blobs' key.
void desEncrypt(const unsigned char* input, unsigned char* output, std::size_t length);
void desDecrypt(const unsigned char* input, unsigned char* output, std::size_t length);

}  // namespace tovrbench
