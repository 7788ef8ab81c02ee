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

// REQUIRES: bytesRead() bytes at source.data; that also keeps every product below in range.
void copyRows(const CoefBuffer& source, const Rect& stored, const Rect& requested, unsigned char* out) {
  const std::int64_t rowBytes = width(requested) * source.databitwidth;
  const std::int64_t firstColumn = std::int64_t{requested.left} - stored.left;
  for (std::int64_t row = 0; row < height(requested); ++row) {
    const std::int64_t rowsAbove = std::int64_t{requested.top} - stored.top + row;
    const std::int64_t firstCell = rowsAbove * width(stored) + firstColumn;
    std::memcpy(out + row * rowBytes, source.data + firstCell * source.databitwidth,
                static_cast<std::size_t>(rowBytes));
  }
}

}  // namespace

std::int64_t regionBytes(const Rect& rect, std::int32_t cellBytes) {
  return saturatingProduct(saturatingProduct(height(rect), width(rect)), cellBytes);
}

int cropRegion(const CoefBuffer& source, const Rect& stored, const Rect& requested,
               std::unique_ptr<unsigned char[]>& out) {
  if (!holds(stored, requested)) return kRectangleRefused;
  const std::int64_t size = regionBytes(requested, source.databitwidth);
  if (size > source.datasize) return kBlockTooSmall;
  if (size < 0) throw std::bad_alloc();
  const auto bytes = static_cast<std::size_t>(size);
  if (!hasCells(stored, requested, source.databitwidth)) {
    out = std::make_unique<unsigned char[]>(bytes);  // zeros: nothing of the heap reaches the host
    return kOk;
  }
  if (bytesRead(stored, requested, source.databitwidth) > source.datasize) return kBlockTooSmall;
  std::unique_ptr<unsigned char[]> cells(new unsigned char[bytes]);
  copyRows(source, stored, requested, cells.get());
  out = std::move(cells);
  return kOk;
}

}  // namespace tovr
