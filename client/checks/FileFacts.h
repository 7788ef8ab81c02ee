// The description, the engine and the sizes of a database file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/contents/Screens.h"
#include "client/session/Session.h"

namespace tovrdb {

struct Fact {
  const char* label;
  const char* name;  // in JSON
  std::string value;
};

struct TableFacts {
  std::string name;
  std::int64_t rows = 0;
  std::int64_t bytes = 0;  // the sum of the lengths of its values
  std::string fault;       // why the bytes cannot be counted
};

struct ScreenFacts {
  StoredScreen screen;
  std::int64_t areas = 0;
};

struct FileFacts {
  int type = 0;
  std::vector<Fact> description;
  std::vector<Fact> engine;  // only what the engine reports
  std::vector<TableFacts> tables;
  std::vector<ScreenFacts> screens;
};

// Throws Error on failure.
FileFacts factsOf(Session& session);

// There are two generations of encrypted files, those of SQLCipher 3.x and of 4.x: page size, key derivation and
// checksums differ. 3 or 4, for the open file and for the files which the engine creates.
int fileGeneration(Session& session);
int engineGeneration(Session& session);

// "4.x"
std::string generationText(int generation);

}  // namespace tovrdb
