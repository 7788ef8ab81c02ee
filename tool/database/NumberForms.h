// The form of the numbers as it is kept with the blocks of a file, in their version texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tool/cells/NumberForm.h"
#include "tool/database/StoredArea.h"

namespace tovrtool {

// Nothing where none is kept, or one that the cells do not fit.
std::optional<NumberForm> keptForm(const StoredArea& area);

// The form in which the cells of these areas are to be read; nothing where it is neither given nor kept by all of them.
// Throws ToolError where they keep different ones.
std::optional<NumberForm> formOf(const std::vector<StoredArea>& areas, const FormOptions& options);

// The same; throws ToolError, which asks for --dtype, where there is none.
NumberForm requireForm(const std::vector<StoredArea>& areas, const FormOptions& options);

// What a put says about the numbers of its block.
struct FormToKeep {
  FormOptions given;
  std::optional<Dtype> ofArray;  // the type that the array itself tells
  bool newText = false;          // the version text is given, too, and takes the place of what was stored
  std::string text;
};

// After a put: writes the block's version text, which the library leaves as it is when it replaces a block. A type is
// kept unasked only where no other program's text stands. Throws ToolError where the form does not fit the cells.
// REQUIRES: a transaction, in which the block was stored.
void keepForm(Session& session, std::int64_t blockId, std::int32_t cellBytes, const FormToKeep& what);

// Before a patch, whose cells join others: throws ToolError where they are said to be other numbers than those.
void requireKeptForm(const StoredArea& area, const FormToKeep& what);

}  // namespace tovrtool
