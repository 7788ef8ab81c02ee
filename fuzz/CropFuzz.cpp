// The crop of every rectangle out of every block, beside one that goes byte by byte.
#include <memory>
#include <new>

#include "fuzz/Choices.h"
#include "fuzz/Target.h"
#include "manager/RegionCrop.h"
#include "storage/StatusCodes.h"

namespace tovrfuzz {
namespace {

__extension__ using Wide = __int128;  // holds every product of two sides and a cell width

constexpr int kOutOfMemory = -1;

struct Cut {
  int code;
  Bytes cells;
};

// The stored block is walked with coordinates that count as unsigned: nothing is visited where the first is negative
// and the last is not.
bool isWalked(std::int32_t first, std::int32_t last) { return (first < 0) == (last < 0); }

Cut cutByteByByte(const Bytes& block, std::int32_t blockBytes, std::int32_t cellBytes, const tovr::Rect& stored,
                  const tovr::Rect& asked) {
  if (asked.left < stored.left || asked.right > stored.right) return {tovr::kRectangleRefused, {}};
  if (asked.top < stored.top || asked.bottom > stored.bottom) return {tovr::kRectangleRefused, {}};
  const Wide columns = Wide{asked.right} - asked.left + 1;
  const Wide rows = Wide{asked.bottom} - asked.top + 1;
  const Wide size = rows * columns * cellBytes;
  if (size > blockBytes) return {tovr::kBlockTooSmall, {}};
  if (size < 0) return {kOutOfMemory, {}};
  Bytes cells(static_cast<std::size_t>(size));
  const bool walked = isWalked(stored.left, stored.right) && isWalked(stored.top, stored.bottom);
  if (!walked || columns <= 0 || cellBytes <= 0) return {tovr::kOk, cells};
  std::size_t written = 0;
  for (Wide y = asked.top; y <= asked.bottom; ++y) {
    for (Wide x = asked.left; x <= asked.right; ++x) {
      const Wide cell = (y - stored.top) * (Wide{stored.right} - stored.left + 1) + (x - stored.left);
      for (Wide byte = cell * cellBytes; byte < (cell + 1) * cellBytes; ++byte) {
        if (byte >= blockBytes) return {tovr::kBlockTooSmall, {}};
        cells[written++] = block[static_cast<std::size_t>(byte)];
      }
    }
  }
  return {tovr::kOk, cells};
}

Cut cut(Bytes& block, std::int32_t blockBytes, std::int32_t cellBytes, const tovr::Rect& stored,
        const tovr::Rect& asked) {
  std::unique_ptr<unsigned char[]> cells;
  try {
    const int code = tovr::cropRegion({cellBytes, block.data(), blockBytes}, stored, asked, cells);
    if (code != tovr::kOk) {
      require(cells == nullptr, "a refused crop leaves an array");
      return {code, {}};
    }
  } catch (const std::bad_alloc&) {
    return {kOutOfMemory, {}};
  }
  const std::int64_t size = tovr::regionBytes(asked, cellBytes);
  return {tovr::kOk, Bytes(cells.get(), cells.get() + size)};
}

// A plan reads inside any block, also one that is far too large for this machine's memory.
void testPlan(const tovr::Rect& stored, const tovr::Rect& asked, std::int32_t cellBytes, std::int32_t blockBytes) {
  tovr::CropPlan plan;
  if (tovr::planCrop(stored, asked, cellBytes, blockBytes, plan) != tovr::kOk || plan.rows == 0) return;
  require(plan.rows > 0 && plan.rowBytes > 0 && plan.stride >= plan.rowBytes && plan.first >= 0,
          "a plan with no sense");
  require(Wide{plan.rows} * plan.rowBytes == plan.bytes, "the runs are not as long as the region");
  require(Wide{plan.first} + Wide{plan.rows - 1} * plan.stride + plan.rowBytes <= blockBytes,
          "a plan beyond the block");
}

std::int32_t clamped(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

// Anything, or a few cells anywhere in the world.
tovr::Rect rectangle(Choices& choices) {
  if (choices.flag()) return {choices.number(), choices.number(), choices.number(), choices.number()};
  const std::int32_t left = choices.number();
  const std::int32_t top = choices.number();
  const auto beyond = [&](std::int32_t edge) {
    return clamped(std::int64_t{edge} + static_cast<std::int64_t>(choices.below(12)) - 2);
  };
  return {left, top, beyond(left), beyond(top)};
}

// Mostly a part of `outer`.
tovr::Rect part(Choices& choices, const tovr::Rect& outer) {
  const unsigned char kind = choices.byte();
  if (kind < 32) return rectangle(choices);
  const auto moved = [&](std::int32_t edge, int direction) {
    return clamped(std::int64_t{edge} +
                   direction * (static_cast<std::int64_t>(choices.below(8)) - (kind < 64 ? 1 : 0)));
  };
  return {moved(outer.left, 1), moved(outer.top, 1), moved(outer.right, -1), moved(outer.bottom, -1)};
}

}  // namespace
}  // namespace tovrfuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tovrfuzz;
  Choices choices(data, size);
  const tovr::Rect stored = rectangle(choices);
  const tovr::Rect asked = part(choices, stored);
  const std::int32_t cellBytes = choices.flag() ? choices.number() : static_cast<std::int32_t>(choices.below(20));
  testPlan(stored, asked, cellBytes, choices.number());

  Bytes block = noise(choices.below(2048), 7);
  const std::int32_t blockBytes = choices.byte() == 1 ? -choices.byte() : static_cast<std::int32_t>(block.size());
  const Cut expected = cutByteByByte(block, blockBytes, cellBytes, stored, asked);
  const Cut found = cut(block, blockBytes, cellBytes, stored, asked);
  require(found.code == expected.code, "a wrong code");
  require(found.cells == expected.cells, "wrong cells");
  return 0;
}
