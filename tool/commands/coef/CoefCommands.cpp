#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"

namespace tovrdb::tool {

void addCoefCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("coef", "Blocks of coefficient cells");
  addCoefPutCommand(group);
  addCoefGetCommand(group);
  addCoefListCommand(group);
  addCoefDeleteCommand(group);
  addCoefStatsCommand(group);
}

}  // namespace tovrdb::tool
