#include "client/session/FileGeneration.h"

#include <fmt/core.h>

#include "client/session/SqlQuery.h"

namespace tovrdb {

int engineGeneration(Session& session) {
  const auto rows = queryRows(session.connection(), "pragma cipher_version");
  return !rows.empty() && rows[0][0].rfind("4.", 0) == 0 ? 4 : 3;
}

// The library has told the engine to read a file of 3.x, with the number of rounds that its keys are derived in.
int fileGeneration(Session& session) {
  constexpr std::int64_t kRoundsOf3 = 64000;
  return engineGeneration(session) == 4 && queryNumber(session.connection(), "pragma kdf_iter") != kRoundsOf3 ? 4 : 3;
}

std::string generationText(int generation) { return fmt::format("{}.x", generation); }

}  // namespace tovrdb
