// Services that forward to the real ones, and fail where they are told to.
#pragma once

#include <string>
#include <vector>

#include "crypto/IEncryption.h"
#include "storage/IDBOperate.h"
#include "tests/support/FaultPoints.h"

namespace tovrtest {

// Every call that answers a code is a point, named by the call and the statement it belongs to: "step select 1".
class FaultyConnection final : public tovr::IDBOperate {
 public:
  static constexpr int kFault = 10;  // SQLite's code for a failed disk access

  FaultyConnection(tovr::IDBOperate& target, FaultPoints& points) : target_(target), points_(points) {}

  std::vector<std::string> statements;  // every SQL text that came
  std::vector<std::string> tableCalls;  // get_table, free_table and what else came between, errMsg and prepare_v2

  int open(const char* path) override { return points_.fails("open") ? kFault : target_.open(path); }
  int close() override { return points_.fails("close") ? kFault : target_.close(); }
  int setKey(const char* key, unsigned int length) override {
    return points_.fails("setKey") ? kFault : target_.setKey(key, length);
  }
  int exec(const char* sql) override { return fails("exec", sql) ? kFault : target_.exec(sql); }
  int errCode() override { return target_.errCode(); }
  const char* errMsg() override {
    tableCalls.emplace_back("errMsg");
    return target_.errMsg();
  }
  int prepare_v2(const char* sql, int length) override {
    tableCalls.emplace_back("prepare_v2");
    stepFailed_ = false;
    prepared_ = sql;
    return fails("prepare", sql) ? kFault : target_.prepare_v2(sql, length);
  }
  int bind_int(int index, int value) override { return fails("bind") ? kFault : target_.bind_int(index, value); }
  int bind_int64(int index, std::int64_t value) override { return target_.bind_int64(index, value); }
  int bind_double(int index, double value) override { return target_.bind_double(index, value); }
  int bind_text(int index, const char* text, int length, void (*destructor)(void*)) override {
    return fails("bind") ? kFault : target_.bind_text(index, text, length, destructor);
  }
  int bind_blob(int index, const void* data, int length, void (*destructor)(void*)) override {
    return fails("bind") ? kFault : target_.bind_blob(index, data, length, destructor);
  }
  int bind_null(int index) override { return target_.bind_null(index); }
  int step() override { return (stepFailed_ = fails("step")) ? kFault : target_.step(); }
  int reset() override { return fails("reset") ? kFault : afterStep(target_.reset()); }
  int finalize() override { return fails("finalize") ? kFault : afterStep(target_.finalize()); }
  int get_table(const char* sql, char*** result, int* rows, int* columns) override {
    tableCalls.emplace_back("get_table");
    return fails("get_table", sql) ? kFault : target_.get_table(sql, result, rows, columns);
  }
  void free_table(char** result) override {
    tableCalls.emplace_back("free_table");
    target_.free_table(result);
  }
  const void* column_blob(int column) override { return target_.column_blob(column); }
  int column_bytes(int column) override { return target_.column_bytes(column); }
  int column_int(int column) override { return target_.column_int(column); }
  double column_double(int column) override { return target_.column_double(column); }
  const unsigned char* column_text(int column) override { return target_.column_text(column); }

 private:
  bool fails(const std::string& call) { return points_.fails(call + " " + prepared_); }
  bool fails(const std::string& call, const char* sql) {
    statements.emplace_back(sql);
    return points_.fails(call + " " + sql);
  }
  // As the engine: what a failed step answered, the next reset or finalize answers again.
  int afterStep(int result) {
    const bool failed = stepFailed_;
    stepFailed_ = false;
    return failed ? kFault : result;
  }

  tovr::IDBOperate& target_;
  FaultPoints& points_;
  std::string prepared_;
  bool stepFailed_ = false;
};

// Every enciphering and deciphering of a buffer is a point named "cipher". A service of the host's own: one call a
// blob.
class FaultyEncryption : public tovr::IEncryption {
 public:
  using Text = std::string;

  FaultyEncryption(tovr::IEncryption& target, FaultPoints& points) : target_(target), points_(points) {}

  bool encrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return !points_.fails("cipher") && target_.encrypt(key, iv, input, output);
  }
  bool decrypt(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return !points_.fails("cipher") && target_.decrypt(key, iv, input, output);
  }
  bool encryptKeyPadded(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return encrypt(key, iv, input, output);
  }
  bool decryptKeyPadded(const Text& key, const Text& iv, const Bytes& input, Bytes& output) override {
    return decrypt(key, iv, input, output);
  }
  bool encryptFile(const Text&, const Text&, const Text&) override { return false; }
  bool encryptFile(const Text&, const Text&, const Text&, const Text&) override { return false; }
  bool decryptFile(const Text&, const Text&, const Text&) override { return false; }
  bool decryptFile(const Text&, const Text&, const Text&, const Text&) override { return false; }

 private:
  tovr::IEncryption& target_;
  FaultPoints& points_;
};

}  // namespace tovrtest
