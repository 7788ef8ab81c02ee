// All commands. Each function adds one command, or one group of them, to the program's command line; it is defined in
// the .cpp of the same name.
#pragma once

namespace tovrdb::tool {

class CommandGroup;

void addBackupCommand(CommandGroup& program);
void addCheckCommand(CommandGroup& program);
void addCipherCommands(CommandGroup& program);  // encrypt, decrypt
void addCoefCommands(CommandGroup& program);    // coef put, get, list, delete, stats
void addCoefDeleteCommand(CommandGroup& coef);
void addCoefGetCommand(CommandGroup& coef);
void addCoefListCommand(CommandGroup& coef);
void addCoefPutCommand(CommandGroup& coef);
void addCoefStatsCommand(CommandGroup& coef);
void addCreateCommand(CommandGroup& program);
void addDataCommands(CommandGroup& program);  // data put, get, list, delete
void addDiffCommand(CommandGroup& program);
void addDocCommands(CommandGroup& program);     // manual, completion
void addExportCommands(CommandGroup& program);  // export, import
void addHeatmapCommand(CommandGroup& program);
void addInfoCommand(CommandGroup& program);
void addInspectCommand(CommandGroup& program);
void addMeasureCommands(CommandGroup& program);  // measure put, list, get, clear
void addReportCommand(CommandGroup& program);
void addRewriteCommands(CommandGroup& program);  // rekey, upgrade
void addSampleCommand(CommandGroup& program);
void addScreenCommands(CommandGroup& program);  // screen add, list, delete

}  // namespace tovrdb::tool
