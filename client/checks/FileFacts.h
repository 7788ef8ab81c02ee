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

}  // namespace tovrdb
