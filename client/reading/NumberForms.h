// The form of the numbers as it is kept with the blocks of a file, in their version texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/contents/BlockPlace.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// Nothing where none is kept, or one that the cells do not fit.
std::optional<NumberForm> keptForm(const StoredArea& area);

// The form in which the cells of these areas are to be read; nothing where it is neither given nor kept by all of them.
// Throws Error where they keep different ones.
std::optional<NumberForm> formOf(const std::vector<StoredArea>& areas, const FormOptions& options);

// The same; throws Error, which asks for --dtype, where there is none.
NumberForm requireForm(const std::vector<StoredArea>& areas, const FormOptions& options);

// The version text that a block of such cells is to have, which has `stored` now; empty for a new one. A type that only
// the array tells is kept, unless the block keeps another program's text. Throws Error if the form does not fit the
// cells, or the text beside it is too long.
std::string versionToKeep(const std::string& stored, std::int32_t cellBytes, const BlockText& put);

// The form in which cells are put into the area, as far as they or the area tell it. Throws Error if the array is
// of another type than it is said to be.
std::optional<NumberForm> formOfPatch(const StoredArea& area, const BlockText& patch);

// Whether a block kept as `kept` would lose its type, its scale or its unit if it is kept as `wanted`.
bool losesForm(const NumberForm& kept, const std::optional<NumberForm>& wanted);

}  // namespace tovrdb
