#include "tool/commands/DataCommands.h"

#include <memory>

#include "storage/StatusCodes.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/FileCommand.h"
#include "tool/database/Session.h"
#include "tool/database/SqlQuery.h"
#include "tool/files/ByteOutput.h"
#include "tool/files/FileInput.h"
#include "tool/files/Message.h"
#include "tool/forms/TextTable.h"
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
  Session session = Session::openExisting(context, options.file);
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
  Session session = Session::openExisting(context, options.file);
  auto record = session.host().makeRecord<tovr::ConfigData>();
  record->datatype = options.type;
  const int code = session.manager().queryData(record.get());
  const std::unique_ptr<unsigned char[]> payload(record->data);
  session.require(code, code == tovr::kNoData ? "tovrdb data list shows the types" : "");
  output.write(payload.get(), record->dataSize);
  output.commit();
}

void list(Context& context, const Options& options) {
  Session session = Session::openExisting(context, options.file);
  const auto rows = queryRows(session.connection(),
                              "select i.datatype, i.id, i.dataid, length(d.data), d.version from DataInfo i"
                              " left join Data d on d.id = i.dataid order by i.id");
  context.output.print(
      textTable({{"type", true}, {"id", true}, {"blob", true}, {"stored bytes", true}, {"version"}}, rows));
}

}  // namespace

void addDataCommands(CLI::App& app, Command& chosen) {
  CLI::App* group = app.add_subcommand("data", "Generic data, one blob per data type")->require_subcommand(1);
  auto options = std::make_shared<Options>();
  const auto addType = [options](CLI::App& command) {
    command.add_option("--type", options->type, "The data type")->required();
  };

  CLI::App* command =
      addFileCommand(*group, chosen, options, "put", "Store a file; it replaces what its type held", put);
  addType(*command);
  command->add_option("INPUT", options->input, "The file to store; - is standard input")->required();
  command->add_option("--version-text", options->versionText, "Text kept with the data");

  command = addFileCommand(*group, chosen, options, "get", "Read the data of a type", get);
  addType(*command);
  addOutput(*command, options->output);

  addFileCommand(*group, chosen, options, "list", "List what is stored", list);
}

}  // namespace tovrtool
