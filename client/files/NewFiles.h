// New database files.
#pragma once

#include <string>

#include "client/session/Session.h"

namespace tovrdb {

// What a file says about itself.
struct DatabaseDescription {
  int type = 0;  // 0: screens are found by rectangle; 1: by name
  std::string name;
  std::string structureVersion = "1";
  std::string softwareVersion = TOVRDB_VERSION;
  std::string softwareType = "tovrdb";
  std::string databaseVersion = "1";
};

// Throws Error where no file of that name can be made.
void requireFree(const std::string& file);

// The file appears when it is complete. Without a name it has its file's. Throws Error, also where there is
// something of that name.
void makeDatabase(const std::string& plugin, const std::string& file, const std::string& key,
                  const DatabaseDescription& description);

// The tables and the description, in a database that has none yet. Throws Error.
void fillNew(Session& session, const DatabaseDescription& description);

}  // namespace tovrdb
