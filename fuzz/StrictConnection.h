// A connection that forwards to the engine's and hands out columns as copies of exactly their size, which live no
// longer than they must: a read beyond a column, or of one that is gone, is the address sanitizer's to report.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "storage/DBOperate.h"

namespace tovrfuzz {

class StrictConnection final : public tovr::IDBOperate {
 public:
  int open(const char* path) override { return forgetColumns().open(path); }
  int close() override { return forgetColumns().close(); }
  int setKey(const char* key, unsigned int length) override { return engine_.setKey(key, length); }
  int exec(const char* sql) override { return engine_.exec(sql); }
  int errCode() override { return engine_.errCode(); }
  const char* errMsg() override { return engine_.errMsg(); }
  int prepare_v2(const char* sql, int length) override { return forgetColumns().prepare_v2(sql, length); }
  int bind_int(int index, int value) override { return engine_.bind_int(index, value); }
  int bind_int64(int index, std::int64_t value) override { return engine_.bind_int64(index, value); }
  int bind_double(int index, double value) override { return engine_.bind_double(index, value); }
  int bind_text(int index, const char* text, int length, void (*destructor)(void*)) override {
    return engine_.bind_text(index, text, length, destructor);
  }
  int bind_blob(int index, const void* data, int length, void (*destructor)(void*)) override {
    return engine_.bind_blob(index, data, length, destructor);
  }
  int bind_null(int index) override { return engine_.bind_null(index); }
  int step() override { return forgetColumns().step(); }
  int reset() override { return forgetColumns().reset(); }
  int finalize() override { return forgetColumns().finalize(); }
  int get_table(const char* sql, char*** result, int* rows, int* columns) override {
    return engine_.get_table(sql, result, rows, columns);
  }
  void free_table(char** result) override { engine_.free_table(result); }
  const void* column_blob(int column) override {
    const void* bytes = engine_.column_blob(column);
    return copyOf(static_cast<const unsigned char*>(bytes), engine_.column_bytes(column));
  }
  int column_bytes(int column) override { return engine_.column_bytes(column); }
  int column_int(int column) override { return engine_.column_int(column); }
  double column_double(int column) override { return engine_.column_double(column); }
  const unsigned char* column_text(int column) override {
    const unsigned char* text = engine_.column_text(column);
    return copyOf(text, engine_.column_bytes(column) + 1);
  }

 private:
  tovr::DBOperate& forgetColumns() {
    columns_.clear();
    return engine_;
  }
  const unsigned char* copyOf(const unsigned char* bytes, int size) {
    if (bytes == nullptr) return nullptr;
    columns_.emplace_back(new unsigned char[static_cast<std::size_t>(size)]);
    std::copy_n(bytes, size, columns_.back().get());
    return columns_.back().get();
  }

  tovr::DBOperate engine_;
  std::vector<std::unique_ptr<unsigned char[]>> columns_;
};

}  // namespace tovrfuzz
