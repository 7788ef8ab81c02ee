// Plans to add or rename screens and to store what hosts keep beside cells.
//
// Each is made under the lock of applyChanges(), and throws Error if the change conflicts with what is stored.
#pragma once

#include <cstdint>
#include <string>

#include "client/storing/Changes.h"

namespace tovrdb {

// Both throw Error (kConflict) for a name that another screen has and, unless `force`, for one that differs from
// another's only in case or blanks, or that begins or ends with a blank.
//
// Unless `force`, in databases that find screens by rectangle, a screen is refused whose cells all lie in an older one:
// that one is always found first.
ChangePlan planNewScreen(Session& session, const std::string& name, const Rect& rect, bool force);
// Also throws if no screen is named `name`.
ChangePlan planScreenName(Session& session, const std::string& name, const std::string& newName, bool force);

// Replaces what the type held; the notices tell what that was. The library files every blob under the screen that was
// added last; if that one is deleted, the plan files it under the last one there is, and tells so. Throws Error
// (kRefused) without a screen.
ChangePlan planData(Session& session, std::int32_t type, const std::string& version, Bytes payload);

ChangePlan planMeasurement(std::int32_t type, const Rect& rect, const std::string& version, Bytes payload);

}  // namespace tovrdb
