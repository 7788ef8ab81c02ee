// What is said when the library or the engine refuses.
#pragma once

#include <string>

#include "client/base/Error.h"

namespace tovrdb {

// Another program is using the file: nothing is wrong with it.
bool isBusy(int status);

// "4113: WHAT IT MEANS (the engine's own words); detail", with the code as the error's status. Empty texts are left
// out, and so are words of the engine that repeat the meaning. A failure of the engine says that nothing was changed:
// REQUIRES that it ends the transaction in which it happened, if there is one. If the file is busy the error says how
// to wait, and nothing else. Its exit code is kDamaged, kNoSpace, kBusy or kFileProblem for codes that mean that.
Error libraryError(int status, const std::string& engineWords, const std::string& detail);

// Codes of the library's own say it all.
inline Error libraryError(int status, const std::string& detail = "") { return libraryError(status, "", detail); }

// The same code in words of our own.
Error statusError(int status, const std::string& text);

}  // namespace tovrdb
