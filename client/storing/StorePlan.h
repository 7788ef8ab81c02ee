// What storing blocks would do to a file, decided before anything is written.
//
// Pure: it knows what lies where, and no connection. The library would take all of it silently: a new block that an
// older one hides, one that replaces another of a different place or another type of numbers, a screen of a mistyped
// name, two blocks of one batch that replace each other. A plan objects to these, all of them at once; what it lets
// pass loses nothing that was not named.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/base/Error.h"
#include "client/contents/BlockPlace.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// A block that is to be stored, but for its cells.
struct WantedBlock {
  std::string name;  // of its file; empty for one without
  AreaName area;
  BlockText text;
  std::int32_t cellBytes = 0;
};

// What a block may do to what is stored. Each replaces a block of its very place.
enum class StoreMode {
  kCareful,  // nothing else
  kPatch,    // put its cells into the stored block that holds its place, and nothing else
  kReplace,  // remove stored blocks that lie wholly inside
  kBeside,   // lie upon others, as the library has it: where both hold a rectangle, the older one answers
  kUpdate    // rewrite what the screen has of its type, and add nothing
};

struct StoreRules {
  StoreMode mode = StoreMode::kCareful;
  bool force = false;      // other widths and types of numbers, other places in databases of type 1
  bool newScreen = false;  // in databases of type 1: screens whose names look like slips of stored ones
};

struct StoredPlaces {
  int databaseType = 0;  // 0: screens are found by rectangle; 1: by name
  std::vector<StoredScreen> screens;
  std::vector<StoredArea> areas;
};

struct StoreStep {
  enum class Kind { kAdd, kRewrite, kPatch };
  Kind kind = Kind::kAdd;
  std::size_t block = 0;      // of the wanted ones
  std::int64_t screenId = 0;  // 0: the screen of its name, which the first step of that name adds
  std::size_t area = 0;       // of the stored ones: what is rewritten or patched
  bool movesScreen = false;   // kUpdate by name: its rectangle becomes the screen's
  std::string version;        // the text that the block is to have
  std::string keptForm;       // of the stored numbers and of these, in words; empty unless they differ
  std::string wantedForm;
  std::vector<std::size_t> removed;  // of the stored ones: what goes before
};

struct StorePlan {
  std::vector<StoreStep> steps;       // one a wanted block, in their order
  std::vector<Objection> objections;  // one line each; if there are any, nothing is to be done
};

// Throws Error if a block's name, or the mode, does not suit the database's type.
StorePlan planStore(const StoredPlaces& stored, const std::vector<WantedBlock>& wanted, const StoreRules& rules);

}  // namespace tovrdb
