#include <fmt/core.h>

#include <utility>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/checks/JsonForms.h"
#include "client/contents/HostData.h"
#include "client/disk/FileInput.h"
#include "client/storing/Additions.h"
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
  std::optional<Rect> rect;
  std::string input;
  std::string versionText;
  std::int64_t id = 0;
  bool force = false;
  OutputOptions output;
  bool json = false;
};

void put(Context& context, const Options& options) {
  Bytes payload = readInput(options.input);
  const std::size_t size = payload.size();
  Session session = openDatabase(context, options.file);
  const Applied applied = applyChanges(session, [&](Session&) {
    return planMeasurement(options.type, *options.rect, options.versionText, std::move(payload));
  });
  const std::int64_t id = applied.keys.back();
  session.close();
  context.output.print(fmt::format("{}\n", id));
  if (applied.placementRejected) {
    message(
        "the measurement's {0} bytes are stored under key {1}. Its placement row was rejected with code 19, as for "
        "every "
        "measurement: type {2} and rectangle {3} are NOT kept. Note them with the key; read the bytes with tovrdb "
        "measure get --id {1}",
        size, id, options.type, toText(*options.rect));
  }
}

std::string asJson(const std::vector<StoredMeasurement>& all) {
  Json list = Json::array();
  for (const StoredMeasurement& measurement : all) {
    Json object{{"id", measurement.id}, {"stored_bytes", measurement.storedBytes}, {"version", measurement.version}};
    if (!measurement.type.empty()) object["type"] = numberOrText(measurement.type);
    if (measurement.rect) object["rect"] = rectJson(*measurement.rect);
    list.push_back(std::move(object));
  }
  return jsonText(list);
}

std::string asText(const std::vector<StoredMeasurement>& all) {
  TextRows rows;
  for (const StoredMeasurement& measurement : all) {
    rows.push_back({std::to_string(measurement.id), std::to_string(measurement.storedBytes), measurement.version,
                    measurement.type, measurement.rect ? toText(*measurement.rect) : ""});
  }
  return textTable({{"id", true}, {"stored bytes", true}, {"version"}, {"type", true}, {"rectangle"}}, rows);
}

void list(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const std::vector<StoredMeasurement> all = storedMeasurements(session);
  context.output.print(options.json ? asJson(all) : asText(all));
}

void get(Context& context, const Options& options) {
  ByteOutput output(context.output, options.output, options.file);
  Session session = openDatabase(context, options.file);
  output.write(getMeasurement(session, options.id));
  output.commit();
}

void clear(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const std::int64_t count = countMeasurements(session);
  if (count == 0) return message("there are no measurements");
  const std::string what = counted(static_cast<std::size_t>(count), "measurement");
  confirmDeletion({(count == 1 ? "" : "all ") + what}, options.force);
  applyChanges(session, [](Session&) { return ChangePlan{{DeleteMeasurements{}}, {}}; });
  session.close();
  message("deleted {}", what);
}

void addPut(CommandGroup& group) {
  const auto [command, options] = group.add("put", "Store a measurement and print its key", &Options::file, put);
  command.footer(
      R"(The library keeps the bytes and rejects type and rectangle with code 19. That is its contract: it is told on
standard error and is not a failure (exit code 0).)");
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
    addJsonFlag(command, options.json);
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
    addForcedDeletion(command, options.force);
  }
}

}  // namespace tovrdb::tool
