#include "manager/RegionCrop.h"

#include <cstring>
#include <new>

#include "storage/StatusCodes.h"

namespace tovr {
namespace {

// Far beyond 32 bits, and still free to be multiplied by any cell width or side (up to 2^32 - 1) without overflow.
constexpr std::int64_t kSaturated = std::int64_t{1} << 34;
static_assert(INT64_MAX / kSaturated >= std::int64_t{1} << 28);

constexpr std::int64_t magnitude(std::int64_t value) { return value < 0 ? -value : value; }

// The product, or a number of the same sign beyond 32 bits. REQUIRES: |a|, |b| <= kSaturated.
constexpr std::int64_t saturatingProduct(std::int64_t a, std::int64_t b) {
  if (a == 0 || b == 0) return 0;
  if (magnitude(a) > kSaturated / magnitude(b)) return (a < 0) == (b < 0) ? kSaturated : -kSaturated;
  return a * b;
}

constexpr std::int64_t width(const Rect& rect) { return std::int64_t{rect.right} - rect.left + 1; }
constexpr std::int64_t height(const Rect& rect) { return std::int64_t{rect.bottom} - rect.top + 1; }

constexpr bool sameSign(std::int32_t a, std::int32_t b) { return (a < 0) == (b < 0); }

// Whether any cell is copied. REQUIRES: `stored` holds `requested`.
bool hasCells(const Rect& stored, const Rect& requested, std::int32_t cellBytes) {
  return sameSign(stored.left, stored.right) && sameSign(stored.top, stored.bottom) && width(requested) > 0 &&
         height(requested) > 0 && cellBytes > 0;
}

// Bytes of the block from its start to the last cell that is read.
std::int64_t bytesRead(const Rect& stored, const Rect& requested, std::int32_t cellBytes) {
  const std::int64_t rowsAbove = std::int64_t{requested.bottom} - stored.top;
  const std::int64_t cellsInRow = std::int64_t{requested.right} - stored.left + 1;
  const std::int64_t cells = saturatingProduct(width(stored), rowsAbove) + cellsInRow;
  return cells > kSaturated ? kSaturated : saturatingProduct(cells, cellBytes);
}

}  // namespace

std::int64_t regionBytes(const Rect& rect, std::int32_t cellBytes) {
  return saturatingProduct(saturatingProduct(height(rect), width(rect)), cellBytes);
}

int planCrop(const Rect& stored, const Rect& requested, std::int32_t cellBytes, std::int32_t blockBytes,
             CropPlan& plan) {
  if (!holds(stored, requested)) return kRectangleRefused;
  CropPlan made;
  made.bytes = regionBytes(requested, cellBytes);
  if (made.bytes > blockBytes) return kBlockTooSmall;
  if (made.bytes >= 0 && hasCells(stored, requested, cellBytes)) {
    if (bytesRead(stored, requested, cellBytes) > blockBytes) return kBlockTooSmall;
    // What is read lies inside the block, so every product below is in range.
    const std::int64_t rowsAbove = std::int64_t{requested.top} - stored.top;
    const std::int64_t cellsBefore = std::int64_t{requested.left} - stored.left;
    made.rows = height(requested);
    made.rowBytes = width(requested) * cellBytes;
    made.first = (rowsAbove * width(stored) + cellsBefore) * cellBytes;
    made.stride = made.rows > 1 ? width(stored) * cellBytes : made.rowBytes;
  }
  plan = made;
  return kOk;
}

std::unique_ptr<unsigned char[]> allocateRegion(const CropPlan& plan) {
  if (plan.bytes < 0) throw std::bad_alloc();
  const auto size = static_cast<std::size_t>(plan.bytes);
  if (plan.rows == 0) return std::make_unique<unsigned char[]>(size);  // nothing of the heap reaches the host
  return std::unique_ptr<unsigned char[]>(new unsigned char[size]);
}

int cropRegion(const CoefBuffer& source, const Rect& stored, const Rect& requested,
               std::unique_ptr<unsigned char[]>& out) {
  CropPlan plan;
  const int result = planCrop(stored, requested, source.databitwidth, source.datasize, plan);
  if (result != kOk) return result;
  std::unique_ptr<unsigned char[]> cells = allocateRegion(plan);
  for (std::int64_t row = 0; row < plan.rows; ++row) {
    std::memcpy(cells.get() + row * plan.rowBytes, source.data + plan.first + row * plan.stride,
                static_cast<std::size_t>(plan.rowBytes));
  }
  out = std::move(cells);
  return kOk;
}

}  // namespace tovr
