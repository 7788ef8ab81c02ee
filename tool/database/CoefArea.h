// Coefficient areas as commands name them and as the library's records do.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tool/cells/CellBlock.h"
#include "tool/database/Session.h"

namespace tovrtool {

// Which area: what put and get have in common.
struct AreaOptions {
  std::int32_t type = 0;
  std::string screen;
  std::optional<Rect> rect;
};

// What is written beside the cells.
struct BlockText {
  std::int32_t number = -1;
  std::string version;
};

// Throws ToolError where the options do not suit the database's type.
void fillArea(Session& session, const AreaOptions& options, const Rect& rect, tovr::CoefData& record);

// A record that stores `block`. REQUIRES: `block` outlives the record's use.
std::unique_ptr<tovr::CoefData> recordOf(Session& session, const AreaOptions& options, const BlockText& text,
                                         CellBlock& block);

// Throws ToolError that tells what was asked for and what there is, unless `code` is 0.
void requireArea(Session& session, int code, const AreaOptions& options, const Rect& rect);

}  // namespace tovrtool
