// Blobs read in parts against the same blobs deciphered whole.
#include <random>

#include "manager/RegionCrop.h"
#include "storage/BlobCipher.h"
#include "tests/Fixture.h"

namespace tovrtest {

struct Cut {
  int code;  // -1: std::bad_alloc
  Bytes cells;
  bool operator==(const Cut& other) const { return code == other.code && cells == other.cells; }
};

struct Request {
  Bytes blob;  // of exactly its size: a read beyond it is the address sanitizer's to report
  Rect stored;
  Rect requested;
  int cellBytes;
};

Cut cutWhole(const Request& request) {
  Encryption encryption;
  Bytes payload;
  if (!decipherPayload(encryption, request.blob.data(), request.blob.size(), payload)) return {kCipherFailed, {}};
  const CoefBuffer block{request.cellBytes, payload.data(), static_cast<int>(payload.size())};
  std::unique_ptr<unsigned char[]> out;
  try {
    const int code = cropRegion(block, request.stored, request.requested, out);
    if (code != kOk) return {code, {}};
  } catch (const std::bad_alloc&) {
    return {-1, {}};
  }
  return {kOk, Bytes(out.get(), out.get() + regionBytes(request.requested, request.cellBytes))};
}

Cut cutInParts(const Request& request) {
  Encryption encryption;
  EncipheredBlob blob(encryption, request.blob.data(), request.blob.size());
  if (!blob.open()) return {kCipherFailed, {}};
  CropPlan plan;
  const int code =
      planCrop(request.stored, request.requested, request.cellBytes, static_cast<int>(blob.payloadSize()), plan);
  if (code != kOk) return {code, {}};
  if (plan.bytes < 0) return {-1, {}};
  Bytes cells(static_cast<std::size_t>(plan.bytes));
  const auto size = [](std::int64_t value) { return static_cast<std::size_t>(value); };
  EXPECT_TRUE(blob.readRows(size(plan.first), size(plan.rowBytes), size(plan.stride), size(plan.rows), cells.data()));
  return {kOk, cells};
}

class Dice {
 public:
  int roll(int from, int to) { return std::uniform_int_distribution<int>(from, to)(generator_); }
  // A rectangle inside `outer`, or one that pokes out of it by a cell.
  Rect inside(const Rect& outer, int slack) {
    const Rect a{roll(outer.left - slack, outer.right), roll(outer.top - slack, outer.bottom), 0, 0};
    return {a.left, a.top, roll(a.left - slack, outer.right + slack), roll(a.top - slack, outer.bottom + slack)};
  }

 private:
  std::mt19937 generator_{20261122};
};

// Small blocks of every shape, and wide ones whose rows and gaps are longer than what is deciphered in one go.
Request randomRequest(Dice& dice, bool large) {
  Encryption encryption;
  Request request;
  request.cellBytes = dice.roll(1, large ? 40 : 7);
  const int left = dice.roll(-3, 3);
  const int top = dice.roll(-3, 3);
  request.stored = {left, top, left + dice.roll(0, large ? 6000 : 12), top + dice.roll(0, large ? 3 : 9)};
  request.requested = dice.inside(request.stored, dice.roll(0, 5) == 0 ? 1 : 0);
  const auto cells = pattern(static_cast<std::size_t>(regionBytes(request.stored, request.cellBytes)), 5);
  EXPECT_TRUE(encipherPayload(encryption, cells.data(), static_cast<unsigned>(cells.size()), request.blob));
  const int damage = dice.roll(0, 9);
  if (damage == 0) request.blob.resize(static_cast<std::size_t>(dice.roll(0, static_cast<int>(request.blob.size()))));
  if (damage == 1) request.blob[static_cast<std::size_t>(dice.roll(0, static_cast<int>(request.blob.size()) - 1))] ^= 1;
  request.blob.shrink_to_fit();
  return request;
}

TEST(BlobCipherTest, PartsGiveWhatTheWholeBlockGives) {
  Dice dice;
  int good = 0;
  for (int i = 0; i < 6000; ++i) {
    const Request request = randomRequest(dice, i % 20 == 0);
    const Cut whole = cutWhole(request);
    ASSERT_EQ(cutInParts(request), whole) << "round " << i;
    if (whole.code == kOk && !whole.cells.empty()) ++good;
  }
  EXPECT_GT(good, 3000) << "most rounds must compare cells";
}

TEST(BlobCipherTest, PiecesChainToOneCipherText) {
  Encryption encryption;
  for (const std::size_t size : {0U, 1U, 4U, 65531U, 65532U, 65533U, 131068U, 200001U}) {
    const Bytes payload = pattern(size, 3);
    Bytes framed = {static_cast<unsigned char>(size), static_cast<unsigned char>(size >> 8),
                    static_cast<unsigned char>(size >> 16), 0};
    framed.insert(framed.end(), payload.begin(), payload.end());
    Bytes whole;
    Bytes pieces;
    encryption.encrypt("kelptarn", "kelptarn", framed, whole);
    ASSERT_TRUE(encipherPayload(encryption, payload.data(), static_cast<unsigned>(size), pieces));
    EXPECT_TRUE(pieces == whole) << size << " bytes";
  }
}

}  // namespace tovrtest
