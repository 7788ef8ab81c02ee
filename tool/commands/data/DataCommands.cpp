#include <utility>

#include "client/base/Text.h"
#include "client/checks/JsonForms.h"
#include "client/contents/HostData.h"
#include "client/disk/FileInput.h"
#include "client/storing/Additions.h"
#include "client/storing/Removal.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/ByteOutput.h"
#include "tool/io/Message.h"
#include "tool/io/Terminal.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  std::int32_t type = 0;
  std::string input;
  std::string versionText;
  OutputOptions output;
  bool force = false;
  bool json = false;
};

void put(Context& context, const Options& options) {
  Bytes payload = readInput(options.input);
  const std::size_t size = payload.size();
  Session session = openDatabase(context, options.file);
  const Applied applied = applyChanges(
      session, [&](Session& file) { return planData(file, options.type, options.versionText, std::move(payload)); });
  session.close();
  for (const std::string& notice : applied.notices) message(notice);
  message("stored {} as data of type {}", counted(size, "byte"), options.type);
}

void get(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  output.write(getData(session, options.type));
  output.commit();
}

void deleteData(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const Removal removal = dataOfType(session, options.type);
  confirmDeletion(toTexts(removal), options.force);
  applyChanges(session, [&](Session& file) { return planRemoval(file, removal); });
  session.close();
  message("deleted the data of type {}", options.type);
}

std::string asJson(const std::vector<StoredData>& all) {
  Json list = Json::array();
  for (const StoredData& data : all) {
    list.push_back({{"type", numberOrText(data.type)},
                    {"id", data.id},
                    {"blob_id", data.blobId},
                    {"stored_bytes", data.storedBytes},
                    {"version", data.version},
                    {"screen", data.screen}});
  }
  return jsonText(list);
}

std::string asText(const std::vector<StoredData>& all) {
  TextRows rows;
  for (const StoredData& data : all) {
    rows.push_back({data.type, std::to_string(data.id), std::to_string(data.blobId), std::to_string(data.storedBytes),
                    data.version});
  }
  return textTable({{"type", true}, {"id", true}, {"blob", true}, {"stored bytes", true}, {"version"}}, rows);
}

void list(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const std::vector<StoredData> all = storedData(session);
  context.output.print(options.json ? asJson(all) : asText(all));
}

void addType(CLI::App& command, Options& options) {
  command.add_option("--type", options.type, "The data type")->required();
}

}  // namespace

void addDataCommands(CommandGroup& program) {
  CommandGroup group = program.addGroup("data", "Generic data, one blob per data type");
  {
    const auto [command, options] =
        group.add("put", "Store a file; what its type held is replaced, and told", &Options::file, put);
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
    const auto [command, options] = group.add("delete", "Delete the data of a type", &Options::file, deleteData);
    addFile(command, options.file);
    addType(command, options);
    addForcedDeletion(command, options.force);
  }
  {
    const auto [command, options] = group.add("list", "List what is stored", &Options::file, list);
    addFile(command, options.file);
    addJsonFlag(command, options.json);
  }
}

}  // namespace tovrdb::tool
