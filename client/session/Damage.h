// Damage in a file: which failures mean it, and how to go on reading what is not damaged.
//
// Many rows are read at once, and one by one only if that fails: rows that cannot be read then carry a fault, a text
// for people, and all others are as usual.
#pragma once

#include <string>

#include "client/base/Error.h"
#include "client/session/Session.h"

namespace tovrdb {

// Whether a read failed because a page or a blob of the file is not as it was written.
bool isDamage(const Error& error);

// Whether the error says nothing about the file: an interrupt, another program that keeps it busy.
bool isNoFault(const Error& error);

// From here on reads see one state of the file. Call it also after a page that could not be read: until then the engine
// refuses all others.
void beginAgain(Session& session);

// Throws Error: `subject` cannot be read because of `fault`. Its status is kCipherFailed, the status of all damage that
// the engine cannot see.
[[noreturn]] void refuseDamaged(const std::string& subject, const std::string& fault);

// Calls the library's queryData and returns its code. For a screen row without valid numbers the library throws an
// exception of its own; this throws Error, which names the row.
int queryLibrary(Session& session, tovr::DataBase& record);

}  // namespace tovrdb
