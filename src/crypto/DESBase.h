// The cipher core: DES in ECB and CBC mode over byte buffers. Safe on any thread.
//
// Source: FIPS 46-3 (DES), FIPS 81 (modes). Key bytes are used raw: no parity adjustment, no weak-key test.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace tovr {

class DESKey;
struct DESBlock;

class DESBase {
 public:
  using Bytes = std::vector<unsigned char>;

  // The codes of crypt().
  static constexpr int kEncrypt = 0;
  static constexpr int kDecrypt = 1;
  static constexpr int kEcb = 0;
  static constexpr int kCbc = 1;

  static constexpr std::size_t kBlockSize = 8;

  DESBase() = default;
  virtual ~DESBase() = default;
  DESBase(const DESBase&) = delete;
  DESBase& operator=(const DESBase&) = delete;

  // `key` and `iv`: their first 8 bytes, extended with zeros where shorter. `iv` never changes and ECB ignores it.
  // `output` is resized and overwritten; it may be the input. False, with `output` untouched: unknown codes, an
  // input of 2 GiB or more, ECB deciphering of a partial block.
  bool crypt(int direction, int mode, const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const;

  // Pads the last block with zeros; a whole last block gets no further one.
  bool cbcEncrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const;
  // Removes nothing: padding stays as trailing zeros. A partial last block is read as if extended with zeros.
  bool cbcDecrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const;
  bool ecbEncrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const;
  bool ecbDecrypt(const Bytes& iv, const Bytes& input, Bytes& output, const Bytes& key) const;

  // A key ready for use. The last one asked for is kept, since most calls ask for the same again; it is overwritten
  // when another takes its place and nobody uses it any more, or when this object goes.
  std::shared_ptr<const DESKey> ready(const DESBlock& key) const;

 private:
  mutable std::mutex mutex_;
  mutable std::shared_ptr<const DESKey> kept_;  // guarded by mutex_
};

}  // namespace tovr
