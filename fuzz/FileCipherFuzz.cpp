// The file cipher: any file deciphered, and any file enciphered and deciphered again, in place and to a new name.
#include <algorithm>
#include <string>

#include "crypto/DES.h"
#include "fuzz/Choices.h"
#include "fuzz/ScratchFolder.h"
#include "fuzz/Target.h"

namespace tovrfuzz {
namespace {

constexpr std::size_t kPiece = 512;
constexpr std::size_t kBlock = 8;

struct Cipher {
  tovr::DES des;
  std::string key;
  std::string iv;
};

// Each piece is a run of its own, which `convert` answers with what it becomes.
template <class Convert>
Bytes pieceByPiece(const Bytes& content, const Convert& convert) {
  Bytes all;
  for (std::size_t at = 0; at < content.size(); at += kPiece) {
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(at);
    const auto size = static_cast<std::ptrdiff_t>(std::min(kPiece, content.size() - at));
    const Bytes result = convert(Bytes(begin, begin + size));
    all.insert(all.end(), result.begin(), result.end());
  }
  return all;
}

Bytes upToZero(const Bytes& piece) { return {piece.begin(), std::find(piece.begin(), piece.end(), '\0')}; }

Bytes enciphered(const Cipher& cipher, const Bytes& content) {
  return pieceByPiece(content, [&](const Bytes& piece) {
    Bytes result;
    require(cipher.des.encrypt(cipher.key, cipher.iv, piece, result), "a piece is not enciphered");
    return result;
  });
}

Bytes deciphered(const Cipher& cipher, const Bytes& content) {
  return pieceByPiece(content, [&](const Bytes& piece) {
    Bytes result;
    require(cipher.des.decrypt(cipher.key, cipher.iv, piece, result), "a piece is not deciphered");
    return upToZero(result);
  });
}

const ScratchFolder& folder() {
  static const ScratchFolder scratch;
  return scratch;
}

enum class Target { kInPlace, kNewFile, kExistingFile };

// Runs the operation on a file of `content` and gives what it wrote.
template <class Operation>
Bytes written(const Bytes& content, Target target, const Operation& operation) {
  const std::string source = folder().path("source");
  const std::string destination = target == Target::kInPlace ? source : folder().path("destination");
  const Bytes there = {'h', 'e', 'r', 'e'};
  writeFile(source, content);
  std::filesystem::remove(destination + ".temp");
  if (target == Target::kNewFile) std::filesystem::remove(destination);
  if (target == Target::kExistingFile) writeFile(destination, there);
  require(operation(source, destination), "the operation fails");
  if (target != Target::kInPlace) require(contentOf(source) == content, "the source was changed");
  if (target != Target::kExistingFile) {
    require(!std::filesystem::exists(destination + ".temp"), "the temporary file stays");
    return contentOf(destination);
  }
  require(contentOf(destination) == there, "an existing file was replaced");
  return contentOf(destination + ".temp");
}

void test(const Cipher& cipher, Target target, const Bytes& content) {
  const auto encrypt = [&](const std::string& from, const std::string& to) {
    return target == Target::kInPlace ? cipher.des.encryptFile(cipher.key, cipher.iv, from)
                                      : cipher.des.encryptFile(cipher.key, cipher.iv, from, to);
  };
  const auto decrypt = [&](const std::string& from, const std::string& to) {
    return target == Target::kInPlace ? cipher.des.decryptFile(cipher.key, cipher.iv, from)
                                      : cipher.des.decryptFile(cipher.key, cipher.iv, from, to);
  };
  require(written(content, target, decrypt) == deciphered(cipher, content), "any file deciphers to something else");
  const Bytes secret = written(content, target, encrypt);
  require(secret == enciphered(cipher, content), "a file enciphers to something else");
  require(secret.size() == (content.size() + kBlock - 1) / kBlock * kBlock, "a file grows by more than its padding");
  require(written(secret, target, decrypt) == pieceByPiece(content, upToZero), "a text does not come back");
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  constexpr Target kTargets[] = {Target::kInPlace, Target::kNewFile, Target::kExistingFile};
  Choices choices(data, size);
  const Target target = choices.oneOf(kTargets);
  const auto text = [&] {
    const Bytes bytes = choices.take(choices.below(12));
    return std::string(bytes.begin(), bytes.end());
  };
  Cipher cipher;
  cipher.key = text();
  cipher.iv = text();
  Bytes content = choices.rest();
  if (choices.isOneIn(4)) content.resize(choices.isOneIn(8) ? 2 * kPiece : kPiece + content.size(), 'x');
  test(cipher, target, content);
  return 0;
}
