// Blocks of cells into a database and out of it, by the library's own rules.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/cells/CellBlock.h"
#include "tool/cells/NumberForm.h"
#include "tool/database/Session.h"
#include "tool/database/StoredArea.h"
#include "tool/io/Progress.h"

namespace tovrtool {

// Which area of a file: databases of type 1 find it by its screen's name, those of type 0 without.
struct AreaName {
  std::int32_t type = 0;
  std::string screen;
  Rect rect{};
};

// What is written beside the cells.
struct BlockText {
  std::int32_t number = -1;
  std::string version;
  FormOptions form;            // of the numbers, kept with the block
  std::optional<Dtype> dtype;  // as the array tells it
};

enum class StoreMode {
  kInsert,  // what is there is replaced, or stays beside the new block, as the library has it
  kUpdate   // what is there is rewritten, and nothing added
};

struct StoreReport {
  std::int64_t blockId = 0;
  bool screenAdded = false;
  std::optional<Placement> hiddenBy;  // stored before; the library answers from it and not from the new area
};

// Stores a block in a transaction of its own. Throws ToolError, which tells what there is instead; nothing is stored
// then. REQUIRES: the block has the area's rectangle.
StoreReport storeBlock(Session& session, const AreaName& area, const BlockText& text, const CellBlock& block,
                       StoreMode mode);

// A block in a .npy file.
struct BlockFile {
  std::string path;
  AreaName area;
  BlockText text;
};

// Stores all of them in one transaction and reports the bytes of the files to `progress`. Throws ToolError, which names
// the file at fault; nothing is stored then.
void storeFiles(Session& session, const std::vector<BlockFile>& files, Progress& progress);

// The cells of a rectangle. Throws ToolError, which tells what there is instead.
CellBlock fetchBlock(Session& session, const AreaName& area);

}  // namespace tovrtool
