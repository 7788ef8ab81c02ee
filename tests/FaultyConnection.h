// A connection that forwards to another, remembers every SQL text, and fails the n-th call that can fail.
#pragma once

#include <string>
#include <vector>

#include "storage/IDBOperate.h"

namespace tovrtest {

class FaultyConnection final : public tovr::IDBOperate {
 public:
  static constexpr int kFault = 10;  // SQLite's code for a failed disk access

  explicit FaultyConnection(tovr::IDBOperate& target) : target_(target) {}

  // Counts from here on; 0 never fails. Columns and the close do not count; binds count by themselves.
  void failAt(int call) {
    calls = 0;
    failAt_ = call;
  }
  void failBindAt(int bind) {
    binds = 0;
    failBindAt_ = bind;
  }

  int calls = 0;
  int binds = 0;
  std::vector<std::string> statements;

  int open(const char* path) override { return fails() ? kFault : target_.open(path); }
  int close() override { return target_.close(); }
  int setKey(const char* key, unsigned int length) override { return fails() ? kFault : target_.setKey(key, length); }
  int exec(const char* sql) override { return fails(sql) ? kFault : target_.exec(sql); }
  int errCode() override { return target_.errCode(); }
  const char* errMsg() override { return target_.errMsg(); }
  int prepare_v2(const char* sql, int length) override {
    stepFailed_ = false;
    return fails(sql) ? kFault : target_.prepare_v2(sql, length);
  }
  int bind_int(int index, int value) override { return bindFails() ? kFault : target_.bind_int(index, value); }
  int bind_int64(int index, std::int64_t value) override { return target_.bind_int64(index, value); }
  int bind_double(int index, double value) override { return target_.bind_double(index, value); }
  int bind_text(int index, const char* text, int length, void (*destructor)(void*)) override {
    return bindFails() ? kFault : target_.bind_text(index, text, length, destructor);
  }
  int bind_blob(int index, const void* data, int length, void (*destructor)(void*)) override {
    return bindFails() ? kFault : target_.bind_blob(index, data, length, destructor);
  }
  int bind_null(int index) override { return target_.bind_null(index); }
  int step() override { return (stepFailed_ = fails()) ? kFault : target_.step(); }
  int reset() override { return fails() ? kFault : afterStep(target_.reset()); }
  int finalize() override { return fails() ? kFault : afterStep(target_.finalize()); }
  int get_table(const char* sql, char*** result, int* rows, int* columns) override {
    return fails(sql) ? kFault : target_.get_table(sql, result, rows, columns);
  }
  void free_table(char** result) override { target_.free_table(result); }
  const void* column_blob(int column) override { return target_.column_blob(column); }
  int column_bytes(int column) override { return target_.column_bytes(column); }
  int column_int(int column) override { return target_.column_int(column); }
  double column_double(int column) override { return target_.column_double(column); }
  const unsigned char* column_text(int column) override { return target_.column_text(column); }

 private:
  bool bindFails() { return ++binds == failBindAt_; }
  bool fails(const char* sql = nullptr) {
    if (sql != nullptr) statements.emplace_back(sql);
    return ++calls == failAt_;
  }
  // As the engine: what a failed step answered, the next reset or finalize answers again.
  int afterStep(int result) {
    const bool failed = stepFailed_;
    stepFailed_ = false;
    return failed ? kFault : result;
  }

  tovr::IDBOperate& target_;
  int failAt_ = 0;
  int failBindAt_ = 0;
  bool stepFailed_ = false;
};

}  // namespace tovrtest
