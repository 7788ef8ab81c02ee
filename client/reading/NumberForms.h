// The form of numbers that is kept in the version texts of blocks: which one to read with, and what to keep.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/contents/AreaNames.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// The form in which the cells of these areas are to be read; nothing if it is neither given nor kept by all of them.
// Throws Error if they keep different forms.
std::optional<NumberForm> formOf(const std::vector<StoredArea>& areas, const FormOptions& options);

// The same; throws Error, which asks for the type, if there is none.
NumberForm requireForm(const std::vector<StoredArea>& areas, const FormOptions& options);

// The new version text of a block whose text is `stored`, empty for a new block. A type that only the array tells is
// kept, unless the block keeps another program's text. Throws Error if the form does not fit the cells, or if text and
// form are too long.
std::string versionToKeep(const std::string& stored, std::int32_t cellBytes, const BlockText& put);

// The form of cells that patch the area, if they or the area tell it. Throws Error if the given type is not the
// array's.
std::optional<NumberForm> formOfPatch(const StoredArea& area, const BlockText& patch);

// Whether changing the form from `kept` to `wanted` loses the type, the scale or the unit.
bool losesForm(const NumberForm& kept, const std::optional<NumberForm>& wanted);

}  // namespace tovrdb
