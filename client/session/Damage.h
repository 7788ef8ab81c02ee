// Damage in a file: which failures mean it, and how reading goes on beside it.
//
// What reads many rows reads them at once, and one by one only if that fails: the rows that cannot be read then carry a
// fault, a text for people, and all others are as usual.
#pragma once

#include <string>

#include "client/base/Error.h"
#include "client/session/Session.h"

namespace tovrdb {

// Whether a read failed because of what the file holds: a page or a blob that is not as it was written.
bool isDamage(const Error& error);

// Whether the error says nothing about the file: an interrupt, another program that keeps it busy.
bool isNoFault(const Error& error);

// From here on one state of the file is read, whoever else writes to it. After a page that could not be read the engine
// refuses every other until this is called.
void beginAgain(Session& session);

// Throws Error: `subject` cannot be read because of `fault`. Its status is kCipherFailed, as of all damage that the
// engine does not see.
[[noreturn]] void refuseDamaged(const std::string& subject, const std::string& fault);

// The library's queryData. For a screen row that holds no numbers it throws an exception of its own; here that is a
// Error that names the row. Returns the library's code.
int queryLibrary(Session& session, tovr::DataBase& record);

}  // namespace tovrdb
