// What storing blocks would do to a file, decided before anything is written.
//
// Pure: it knows what lies where, and no connection. The library would silently accept a new block that an older one
// hides, one that replaces a block of another rectangle or another type of numbers, a screen with a mistyped name, and
// two blocks of one batch that replace each other. A plan lists all such conflicts at once; storing without conflicts
// loses nothing that the plan does not name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/base/Error.h"
#include "client/contents/AreaNames.h"
#include "client/storing/StoredLayout.h"

namespace tovrdb {

// A block that is to be stored, without its cells.
struct WantedBlock {
  std::string name;  // of its file; empty if it has none
  AreaName area;
  BlockText text;
  std::int32_t cellBytes = 0;
};

// What a block may do to stored blocks, besides replacing one of the same rectangle.
enum class StoreMode {
  kCareful,  // nothing
  kPatch,    // only put its cells into the stored block that holds its rectangle
  kReplace,  // remove stored blocks that lie wholly inside
  kBeside,   // overlap others, as the library allows: if both hold a rectangle, the older one answers
  kUpdate    // only rewrite what the screen has of its type
};

struct StoreRules {
  StoreMode mode = StoreMode::kCareful;
  bool force = false;      // replace other cell widths and types of numbers, other rectangles in databases of type 1
  bool newScreen = false;  // in databases of type 1: add screens whose names look like typing errors of stored ones
};

struct StoreStep {
  enum class Kind { kAdd, kRewrite, kPatch };
  Kind kind = Kind::kAdd;
  std::size_t block = 0;      // index of the wanted block
  std::int64_t screenId = 0;  // 0: the screen of its name, which the first step of that name adds
  std::size_t area = 0;       // index of the stored area that is rewritten or patched
  bool movesScreen = false;   // kUpdate by name: the screen gets the block's rectangle
  std::string version;        // the text that the block is to have
  std::string keptForm;       // the form of the stored numbers and of the block's, unless they are the same
  std::string wantedForm;
  std::vector<std::size_t> removed;  // indexes of stored areas to remove before
};

struct StorePlan {
  std::vector<StoreStep> steps;       // one per wanted block, in their order
  std::vector<Objection> objections;  // if there are any, nothing is to be stored
};

// Throws Error if a block's name, or the mode, does not suit the database's type.
StorePlan planStore(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules);

}  // namespace tovrdb
