#include <iostream>

#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredBlob.h"
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
  std::optional<Rect> rect;
  std::string input;
  std::string versionText;
  std::int64_t id = 0;
  bool yes = false;
  OutputOptions output;
};

constexpr int kRowRejected = 19;  // how the library answers for a measurement whose blob it has stored

std::int64_t lastKey(Session& session) {
  return queryNumber(session.connection(), "select seq from sqlite_sequence where name = 'LumChromData'");
}

void put(Context& context, const Options& options) {
  std::vector<unsigned char> payload = readWholeFile(options.input);
  Session session = openDatabase(context, options.file);
  const std::int64_t before = lastKey(session);
  auto record = session.host().makeRecord<tovr::LumChromaData>();
  record->datatype = options.type;
  record->version = options.versionText;
  setRect(*record, *options.rect);
  record->data = payload.data();
  record->dataSize = static_cast<std::uint32_t>(payload.size());
  const int code = session.manager().insertData(record.get());
  const std::int64_t key = lastKey(session);
  const bool stored = key > before;
  if (code != 0 && !(code == kRowRejected && stored)) session.require(code);
  session.close();
  context.output.print(std::to_string(key) + "\n");
  if (code == kRowRejected) {
    message("the measurement's " + std::to_string(payload.size()) + " bytes are stored under key " +
            std::to_string(key) + ". Its placement row was rejected with code 19, as for every measurement: type " +
            std::to_string(options.type) + " and rectangle " + toText(*options.rect) +
            " are NOT kept. Note them with the key; read the bytes with tovrdb measure get --id " +
            std::to_string(key));
  }
}

void list(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const auto rows = queryRows(
      session.connection(),
      "select d.id, length(d.data), d.version, i.datatype, i.left || ',' || i.top || '..' || i.right || ',' || i.bottom"
      " from LumChromData d left join LumChromDataInfo i on i.dataid = d.id order by d.id");
  context.output.print(
      textTable({{"id", true}, {"stored bytes", true}, {"version"}, {"type", true}, {"rectangle"}}, rows));
}

void get(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  const std::string id = std::to_string(options.id);
  const auto blob = queryBlob(session.connection(), "select data from LumChromData where id = " + id);
  if (!blob) throw ToolError(kRefused, "no measurement has the key " + id + "; tovrdb measure list shows them");
  const auto payload = decipherBlob(session.host().encryption(), *blob);
  output.write(payload.data(), payload.size());
  output.commit();
}

void confirm(const Options& options, std::int64_t count) {
  if (options.yes) return;
  if (!isTerminal(kStandardInput)) {
    throw ToolError(kUsage, "this deletes " + std::to_string(count) + " measurements: give --yes to do it");
  }
  std::cerr << "Delete all " << count << " measurements of " << printable(options.file) << "? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "yes") throw ToolError(kUsage, "nothing was deleted");
}

void clear(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const std::int64_t count = queryNumber(session.connection(), "select count(*) from LumChromData");
  confirm(options, count);
  auto record = session.host().makeRecord<tovr::LumChromaData>();
  Transaction transaction(session);
  session.require(session.manager().deleteData(record.get()));
  transaction.commit();
  session.close();
  message("deleted " + std::to_string(count) + " measurements");
}

void addPut(CommandGroup& group) {
  const auto [command, options] = group.add("put", "Store a measurement and print its key", &Options::file, put);
  command.footer(
      "The library keeps the bytes and rejects type and rectangle with code 19. That is its contract: it is told on\n"
      "standard error and is no failure (exit code 0).");
  addFile(command, options.file);
  command.add_option("--type", options.type, "The measurement's type")->required();
  addRect(command, options.rect, "The cells that were measured")->required();
  command.add_option("INPUT", options.input, "The file to store; - is standard input")->required();
  command.add_option("--version-text", options.versionText, "Text kept with the measurement");
}

}  // namespace

void addMeasureCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("measure", "Luminance and chromaticity measurements");
  addPut(group);
  {
    const auto [command, options] = group.add("list", "List the measurements", &Options::file, list);
    addFile(command, options.file);
  }
  {
    const auto [command, options] = group.add("get", "Read a measurement", &Options::file, get);
    addFile(command, options.file);
    command.add_option("--id", options.id, "Its key")->required();
    addOutput(command, options.output);
  }
  {
    const auto [command, options] = group.add("clear", "Delete all measurements", &Options::file, clear);
    addFile(command, options.file);
    command.add_flag("--yes", options.yes, "Do not ask");
  }
}

}  // namespace tovrtool
