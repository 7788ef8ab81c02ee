// The one list of commands. To add one: write a .cpp that defines its `add...` function, and name the function here.
#pragma once

#include "tool/commands/Command.h"

namespace tovrdb::tool {

// In the order in which `tovrdb --help` and `tovrdb coef --help` show them.
#define TOVRDB_COEF_COMMANDS(COMMAND) \
  COMMAND(addCoefPutCommand)          \
  COMMAND(addCoefGetCommand)          \
  COMMAND(addCoefListCommand)         \
  COMMAND(addCoefDeleteCommand)       \
  COMMAND(addCoefStatsCommand)
#define TOVRDB_COMMANDS(COMMAND)                     \
  COMMAND(addInspectCommand)                         \
  COMMAND(addCreateCommand)                          \
  COMMAND(addInfoCommand)                            \
  COMMAND(addScreenCommands)                         \
  COMMAND(addCoefCommands)                           \
  COMMAND(addHeatmapCommand)                         \
  COMMAND(addDiffCommand)                            \
  COMMAND(addReportCommand)                          \
  COMMAND(addSampleCommand)                          \
  COMMAND(addDataCommands)                           \
  COMMAND(addMeasureCommands)                        \
  COMMAND(addCheckCommand)                           \
  COMMAND(addBackupCommand)                          \
  COMMAND(addExportCommands)  /* and import */       \
  COMMAND(addRewriteCommands) /* rekey, upgrade */   \
  COMMAND(addCipherCommands)  /* encrypt, decrypt */ \
  COMMAND(addDocCommands)     /* manual, completion */

#define TOVRDB_DECLARE(add) void add(CommandGroup& group);
TOVRDB_COEF_COMMANDS(TOVRDB_DECLARE)
TOVRDB_COMMANDS(TOVRDB_DECLARE)
#undef TOVRDB_DECLARE

}  // namespace tovrdb::tool
