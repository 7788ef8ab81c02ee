#include <algorithm>
#include <map>

#include "tool/cells/CellBlock.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/ExportFormat.h"
#include "tool/database/FolderImport.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredBlob.h"
#include "tool/database/StoredRows.h"
#include "tool/io/KeySource.h"
#include "tool/io/Message.h"
#include "tool/io/Progress.h"
#include "tool/io/UnfinishedFile.h"
#include "tool/io/UnfinishedFolder.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  std::string folder;
  Dtype dtype = parseDtype("uint8");
  bool force = false;
};

// Where a block's cells lie.
struct Placement {
  Rect rect;
  std::int32_t cellBytes = 0;

  bool fits(std::size_t bytes) const {
    return cellBytes > 0 && rect.columns() > 0 && rect.rows() > 0 &&
           static_cast<std::int64_t>(bytes) / cellBytes / rect.columns() == rect.rows() &&
           static_cast<std::int64_t>(bytes) == rect.columns() * rect.rows() * cellBytes;
  }
};

// The manifest, or TABLE-KEY.npy or .bin.
bool isOurs(const std::string& fileName) {
  if (fileName == kManifestName) return true;
  const std::size_t dash = fileName.find('-');
  const std::size_t dot = fileName.find('.');
  if (dash == std::string::npos || dot == std::string::npos || dot <= dash + 1) return false;
  const std::string key = fileName.substr(dash + 1, dot - dash - 1);
  const std::string kind = fileName.substr(dot);
  return std::find(kTables.begin(), kTables.end(), fileName.substr(0, dash)) != kTables.end() &&
         key.find_first_not_of("0123456789") == std::string::npos && (kind == ".npy" || kind == ".bin");
}

// Of the first area that refers to a block, by the block's key.
std::map<std::int64_t, Placement> placements(tovr::IDBOperate& connection) {
  std::map<std::int64_t, Placement> found;
  visitRows(connection,
            "select i.coefid, i.left, i.top, i.right, i.bottom, c.databitwidth from Coef_Info i join Coef c on c.id = "
            "i.coefid order by i.id",
            [&] {
              Placement placement;
              placement.rect = {connection.column_int(1), connection.column_int(2), connection.column_int(3),
                                connection.column_int(4)};
              placement.cellBytes = connection.column_int(5);
              found.emplace(columnNumber(connection, 0), placement);
            });
  return found;
}

class Exporter {
 public:
  Exporter(Session& session, const UnfinishedFolder& folder, const Dtype& dtype)
      : session_(session),
        folder_(folder),
        dtype_(dtype),
        placements_(placements(session.connection())),
        progress_("export", payloadBytes(session)) {}

  Json everything() {
    Json tables = Json::object();
    for (const std::string& table : kTables) tables[table] = rows(table);
    Json sequence = Json::object();
    for (const Row& row : queryRows(session_.connection(), "select name, seq from sqlite_sequence order by name")) {
      sequence[row[0]] = std::stoll(row[1]);
    }
    return {{"format", kExportFormat}, {"version", kExportVersion}, {"tables", tables}, {"sequence", sequence}};
  }

  std::size_t files() const { return files_; }

 private:
  static std::uint64_t payloadBytes(Session& session) {
    return static_cast<std::uint64_t>(
        queryNumber(session.connection(),
                    "select ifnull((select sum(length(data)) from Coef), 0) + ifnull((select sum(length(data)) from "
                    "LumChromData), 0) + ifnull((select sum(length(data)) from Data), 0)"));
  }

  Json rows(const std::string& table) {
    Json all = Json::array();
    readTable(
        session_.connection(), table, [&](const Json& row, Bytes blob) { return write(table, row, std::move(blob)); },
        [&](Json row) { all.push_back(std::move(row)); });
    return all;
  }

  // The file for a payload.
  Json write(const std::string& table, const Json& row, Bytes stored) {
    const std::size_t size = stored.size();
    const std::int64_t key = row.at("id").get<std::int64_t>();
    const std::string name = table + "-" + std::to_string(key);
    Json place;
    if (auto payload = decipherExactly(session_.host().encryption(), stored)) {
      const auto placed = placements_.find(key);
      const bool cells = table == kBlockTable && placed != placements_.end() && placed->second.fits(payload->size());
      place = cells ? writeCells(name + ".npy", placed->second, *payload)
                    : writeFile(name + ".bin", kPayloadForm, {}, *payload);
    } else {
      place = writeFile(name + ".bin", kStoredForm, {}, stored);
    }
    progress_.advance(size);
    return place;
  }

  Json writeCells(const std::string& name, const Placement& placement, const Bytes& cells) {
    const auto shape = blockShape(placement.rect, placement.cellBytes, dtype_);
    return writeFile(name, kCellsForm, npyHeader(dtype_, shape), cells);
  }

  Json writeFile(const std::string& name, const char* form, const std::string& header, const Bytes& bytes) {
    FileOutput file(folder_.file(name), Existing::kRefuse);
    file.write(header.data(), header.size());
    file.write(bytes.data(), bytes.size());
    file.commit();
    ++files_;
    return {{"file", name}, {"form", form}};
  }

  Session& session_;
  const UnfinishedFolder& folder_;
  Dtype dtype_;
  std::map<std::int64_t, Placement> placements_;
  Progress progress_;
  std::size_t files_ = 0;
};

void noteWhatIsLeftOut(Session& session) {
  for (const Row& row : queryRows(session.connection(),
                                  "select type, name, tbl_name from sqlite_master where name not like 'sqlite_%'")) {
    if (std::find(kTables.begin(), kTables.end(), row[1]) != kTables.end()) continue;
    message("note: the " + row[0] + " " + row[1] + " is none of the nine tables and is left out");
  }
}

void exportAll(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  UnfinishedFolder folder(options.folder, options.force ? Existing::kReplace : Existing::kRefuse, isOurs);
  session.require(session.connection().exec("BEGIN"));  // one state of the file, whoever else writes to it
  std::size_t files = 0;
  {
    Exporter exporter(session, folder, options.dtype);
    const std::string manifest = jsonText(exporter.everything());
    FileOutput file(folder.file(kManifestName), Existing::kRefuse);
    file.write(manifest.data(), manifest.size());
    file.commit();
    files = exporter.files();
  }
  noteWhatIsLeftOut(session);
  session.close();
  folder.finish();
  message("exported to " + options.folder + ": " + kManifestName + " and " + std::to_string(files) + " payload files");
}

struct ImportOptions {
  std::string folder;
  std::string file;
  bool force = false;
};

void import(Context& context, const ImportOptions& options) {
  const Json manifest = readManifest(options.folder);
  UnfinishedFile unfinished(options.file, options.force ? Existing::kReplace : Existing::kRefuse, "-journal");
  Session session =
      Session::openNew(context.options.access.plugin, unfinished.path(), readKey(context.options.keyFile, KeyUse::kCreate));
  importFolder(session, options.folder, manifest);
  session.close();
  unfinished.finish();
  message("imported " + options.folder + " into " + options.file + "; next: tovrdb check");
}

void addExport(CommandGroup& program) {
  const auto [command, options] = program.add(
      "export", "Write the whole content as a folder of .npy blocks and a manifest", &Options::file, exportAll);
  command.footer(
      "The folder is NOT encrypted: whoever can read it reads everything. `tovrdb import` makes a database file of it\n"
      "that is equal in every stored value.");
  addFile(command, options.file);
  command.add_option("DIR", options.folder, "The folder to make")->required();
  addDtype(command, options.dtype, "Type of the numbers in a cell (uint16, float32, ...); it is not stored [uint8]");
  command.add_flag("--force", options.force, "Replace the folder if it holds an export, and nothing else");
}

void addImport(CommandGroup& program) {
  const auto [command, options] = program.add(
      "import", "Make a new database file of a folder that tovrdb export has written", &ImportOptions::file, import);
  command.footer("Keys, times and the last keys issued are kept. The page key is the one given now.");
  command.add_option("DIR", options.folder, "The folder")->required();
  addFile(command, options.file);
  command.add_flag("--force", options.force, "Replace the database file if it exists, once the new one is complete");
}

}  // namespace

void addExportCommands(CommandGroup& program) {
  addExport(program);
  addImport(program);
}

}  // namespace tovrtool
