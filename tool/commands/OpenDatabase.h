// Opening the database file that a command line names.
#pragma once

#include <string>

#include "client/session/Session.h"
#include "tool/commands/Command.h"

namespace tovrdb::tool {

// Asks for the key only after a look at the file. Throw Error.
Session openDatabase(const Context& context, const std::string& path);
Session openDatabase(const Context& context, const std::string& path, const std::string& key);

// Throws Error where --log names the database file; nothing was appended to it yet.
void requireOtherThanLog(const Context& context, const std::string& path);

}  // namespace tovrdb::tool
