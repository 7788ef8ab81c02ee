// Finds the area with which the library answers a rectangle, or says why there is none and what there is instead.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/base/Error.h"
#include "client/contents/AreaNames.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

// The area that the library would read. Throws Error as noAnswer says. REQUIRES: libraryFinds().
StoredArea answeringArea(Session& session, const AreaName& asked);

// Whether the library can look for it: without a screen's name in files of type 0, by that name in those of type 1.
bool libraryFinds(int databaseType, std::string_view screen);

// Why the library has no answer, with its status code. `areas` have the asked type; if screens are found by name they
// are those of the asked screen.
Error noAnswer(const AreaName& asked, int databaseType, const std::vector<StoredScreen>& screens,
               const std::vector<StoredArea>& areas);

// The same if the screen is known: no single area holds the rectangle.
Error noMatchingArea(const Rect& rect, const std::vector<StoredArea>& areas);

// What there is instead of what was asked for.
struct Alternatives {
  std::string text;
  std::vector<Remedy> remedies;
};

// The areas that overlap the rectangle, and either that they can be read together or how far it reaches beyond the
// nearest; all areas if none overlaps it.
Alternatives alternativesTo(const Rect& rect, const std::vector<StoredArea>& areas);

}  // namespace tovrdb
