
#include "storage/StatusCodes.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/FileInput.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  std::int32_t type = 0;
  std::string input;
  std::string versionText;
  OutputOptions output;
};

void put(Context& context, const Options& options) {
  std::vector<unsigned char> payload = readWholeFile(options.input);
  Session session = openDatabase(context, options.file);
  // The library files every blob under the screen that was added last.
  if (queryNumber(session.connection(), "select count(*) from Screen_Info") == 0) {
    throw ToolError(kRefused, "data belongs to a screen, and the file has none: add one with tovrdb screen add");
  }
  auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = options.type;
  record->version = options.versionText;
  record->data = payload.data();
  record->dataSize = static_cast<std::uint32_t>(payload.size());
  Transaction transaction(session);  // the library deletes the old blob before it stores the new one
  session.require(session.manager().insertData(record.get()));
  transaction.commit();
  session.close();
  message("stored " + std::to_string(payload.size()) + " bytes as data of type " + std::to_string(options.type));
}

void get(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = options.type;
  const int code = session.manager().queryData(record.get());
  const std::unique_ptr<unsigned char[]> payload(record->data);
  session.require(code, code == tovr::kNoData ? "tovrdb data list shows the types" : "");
  output.write(payload.get(), record->dataSize);
  output.commit();
}

void list(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const auto rows = queryRows(session.connection(),
                              "select i.datatype, i.id, i.dataid, length(d.data), d.version from DataInfo i"
                              " left join Data d on d.id = i.dataid order by i.id");
  context.output.print(
      textTable({{"type", true}, {"id", true}, {"blob", true}, {"stored bytes", true}, {"version"}}, rows));
}

void addType(CLI::App& command, Options& options) {
  command.add_option("--type", options.type, "The data type")->required();
}

}  // namespace

void addDataCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("data", "Generic data, one blob per data type");
  {
    const auto [command, options] =
        group.add("put", "Store a file; it replaces what its type held", &Options::file, put);
    addFile(command, options.file);
    addType(command, options);
    command.add_option("INPUT", options.input, "The file to store; - is standard input")->required();
    command.add_option("--version-text", options.versionText, "Text kept with the data");
  }
  {
    const auto [command, options] = group.add("get", "Read the data of a type", &Options::file, get);
    addFile(command, options.file);
    addType(command, options);
    addOutput(command, options.output);
  }
  {
    const auto [command, options] = group.add("list", "List what is stored", &Options::file, list);
    addFile(command, options.file);
  }
}

}  // namespace tovrtool
