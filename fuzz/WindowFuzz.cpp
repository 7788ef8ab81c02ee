// Parts of a stored blob, read without the rest, beside the same parts of the payload deciphered whole. Blobs are
// whole, cut, flipped, or no blobs at all.
#include <memory>

#include "crypto/Encryption.h"
#include "fuzz/Choices.h"
#include "fuzz/Target.h"
#include "manager/RegionCrop.h"
#include "storage/BlobCipher.h"
#include "storage/StatusCodes.h"

namespace tovrfuzz {
namespace {

// Beyond what is deciphered in one go. It takes long, so few inputs get it.
constexpr std::size_t kLargePayload = 200000;
constexpr std::size_t kSmallPayload = 700;

Bytes damaged(Bytes blob, Choices& choices) {
  const unsigned char kind = choices.byte();
  if (kind < 16) return choices.rest();
  if (kind < 48) blob.resize(choices.below(blob.size() + 1));
  for (int flips = kind < 96 ? 1 : 0; flips > 0 && !blob.empty(); --flips) blob[choices.below(blob.size())] ^= 1;
  blob.shrink_to_fit();  // a read beyond it is the address sanitizer's to report
  return blob;
}

struct Cut {
  int code;
  Bytes cells;
};

Cut cutWhole(Bytes& payload, const tovr::Rect& stored, const tovr::Rect& asked, std::int32_t cellBytes) {
  std::unique_ptr<unsigned char[]> cells;
  const tovr::CoefBuffer block{cellBytes, payload.data(), static_cast<std::int32_t>(payload.size())};
  const int code = tovr::cropRegion(block, stored, asked, cells);
  if (code != tovr::kOk) return {code, {}};
  return {code, Bytes(cells.get(), cells.get() + tovr::regionBytes(asked, cellBytes))};
}

Cut cutInParts(tovr::EncipheredBlob& blob, const tovr::Rect& stored, const tovr::Rect& asked, std::int32_t cellBytes) {
  tovr::CropPlan plan;
  const int code = tovr::planCrop(stored, asked, cellBytes, static_cast<std::int32_t>(blob.payloadSize()), plan);
  if (code != tovr::kOk) return {code, {}};
  Bytes cells(static_cast<std::size_t>(plan.bytes));
  const auto count = [](std::int64_t value) { return static_cast<std::size_t>(value); };
  if (plan.rows > 0) {
    blob.readRows(count(plan.first), count(plan.rowBytes), count(plan.stride), count(plan.rows), cells.data());
  }
  return {code, cells};
}

void testCrop(Choices& choices, tovr::EncipheredBlob& blob, Bytes& payload) {
  const auto any = [&](std::size_t count) { return static_cast<std::int32_t>(choices.below(count)); };
  const std::int32_t cellBytes = any(20);
  const std::int32_t left = any(8) - 4;
  const std::int32_t top = any(8) - 4;
  const tovr::Rect stored{left, top, left + any(payload.size() > kSmallPayload ? 6000 : 24), top + any(16)};
  const auto column = [&] { return stored.left + any(static_cast<std::size_t>(stored.right - stored.left) + 1); };
  const auto row = [&] { return stored.top + any(static_cast<std::size_t>(stored.bottom - stored.top) + 1); };
  tovr::Rect asked{column(), row(), column(), row()};
  if (asked.left > asked.right) std::swap(asked.left, asked.right);
  if (asked.top > asked.bottom) std::swap(asked.top, asked.bottom);
  const Cut parts = cutInParts(blob, stored, asked, cellBytes);
  const Cut whole = cutWhole(payload, stored, asked, cellBytes);
  require(parts.code == whole.code && parts.cells == whole.cells, "the parts do not give what the whole block gives");
}

// Any runs inside the payload.
void testRows(Choices& choices, tovr::EncipheredBlob& blob, const Bytes& payload) {
  const std::size_t offset = choices.below(payload.size() + 1);
  const std::size_t rowSize = choices.below(payload.size() - offset + 1);
  const std::size_t stride = rowSize + choices.below(300);
  const std::size_t room = payload.size() - offset - rowSize;
  const std::size_t rows = stride == 0 ? choices.below(3) : choices.below(room / stride + 1) + 1;
  Bytes found(rows * rowSize);
  blob.readRows(offset, rowSize, stride, rows, found.data());
  for (std::size_t i = 0; i < found.size(); ++i) {
    require(found[i] == payload[offset + i / rowSize * stride + i % rowSize], "a wrong byte in a run");
  }
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  Choices choices(data, size);
  tovr::Encryption encryption;
  const Bytes stored = noise(choices.below(choices.isOneIn(256) ? kLargePayload : kSmallPayload), 3);
  Bytes blob;
  require(tovr::encipherPayload(encryption, stored.data(), static_cast<std::uint32_t>(stored.size()), blob),
          "a payload is not enciphered");
  blob = damaged(std::move(blob), choices);

  Bytes payload;
  tovr::EncipheredBlob parts(encryption, blob.data(), blob.size());
  const bool whole = tovr::decipherPayload(encryption, blob.data(), blob.size(), payload);
  require(parts.open() == whole, "the two ways to read disagree on what a blob is");
  if (!whole) return 0;
  require(parts.payloadSize() == payload.size(), "the two ways to read disagree on the payload's length");
  testRows(choices, parts, payload);
  testCrop(choices, parts, payload);
  return 0;
}
