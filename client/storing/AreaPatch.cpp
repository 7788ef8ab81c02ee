#include "client/storing/AreaPatch.h"

#include <fmt/core.h>

#include <algorithm>

#include "client/base/Error.h"
#include "client/contents/AreaWords.h"
#include "client/contents/StoredBlob.h"
#include "client/session/SqlQuery.h"
#include "client/storing/BlockRows.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// `payload` are the area's cells from its row `firstRow` on.
void put(const CellBlock& cells, const StoredArea& area, std::int32_t firstRow, unsigned char* payload) {
  const std::int64_t stride = columnsOf(area.rect) * area.cellBytes;
  const std::int64_t start = (std::int64_t{cells.rect.left} - area.rect.left) * area.cellBytes;
  for (std::int64_t y = cells.rect.top; y <= cells.rect.bottom; ++y) {
    const unsigned char* row = cells.at(cells.rect.left, static_cast<std::int32_t>(y));
    std::copy_n(row, cells.rowBytes(), payload + (y - firstRow) * stride + start);
  }
}

}  // namespace

void patchArea(Session& session, const StoredArea& area, const std::vector<Patch>& patches) {
  auto blob = queryPayload(session, kBlockTable, area.blockId);
  if (!blob) throw statusError(tovr::kCipherFailed, fmt::format("the block of {} is missing", areaText(area)));
  std::int32_t firstRow = area.rect.bottom;
  for (const Patch& patch : patches) firstRow = std::min(firstRow, patch.rect.top);
  tovr::IEncryption& encryption = session.host().encryption();
  requireFilled(payloadLengthOf(encryption, *blob), area.rect, area.cellBytes);
  const auto skipped =
      static_cast<std::size_t>((std::int64_t{firstRow} - area.rect.top) * columnsOf(area.rect) * area.cellBytes);
  changePayload(encryption, *blob, skipped, [&](unsigned char* payload) {
    for (const Patch& patch : patches) put(patch.cells(), area, firstRow, payload);
  });
  rewriteBlobOf(session, area, *blob);
}

}  // namespace tovrdb
