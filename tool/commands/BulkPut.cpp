#include "tool/commands/BulkPut.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "tool/commands/OpenDatabase.h"
#include "tool/database/CoefArea.h"
#include "tool/io/FileInput.h"
#include "tool/io/JsonText.h"
#include "tool/io/Message.h"
#include "tool/io/Progress.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

struct Entry {
  std::string path;
  AreaOptions area;
  BlockText text;
};

Rect rectOf(const Json& value, const std::string& where) {
  std::string text;
  for (const Json& edge : requireArray(value, where + ", \"rect\"")) {
    const auto number = wholeNumber(edge);
    if (!number) refuseJson(where, "\"rect\" is no list of four whole numbers");
    text += (text.empty() ? "" : ",") + std::to_string(*number);
  }
  try {
    return parseRect(text);
  } catch (const std::invalid_argument& error) {
    refuseJson(where, std::string("\"rect\": ") + error.what());
  }
}

Entry entryOf(const Json& value, const std::string& folder, const std::string& where) {
  constexpr const char* kKnown[] = {"file", "type", "rect", "screen", "area", "version"};
  for (const auto& item : requireObject(value, where).items()) {
    const auto same = [&](const char* name) { return item.key() == name; };
    if (std::none_of(std::begin(kKnown), std::end(kKnown), same)) {
      refuseJson(where, "\"" + item.key() + "\" is not known");
    }
  }
  Entry entry;
  entry.path = pathInside(folder, textMember(value, "file", where));
  entry.area.type = numberMember(value, "type", where);
  entry.area.rect = rectOf(member(value, "rect", where), where);
  if (value.contains("screen")) entry.area.screen = textMember(value, "screen", where);
  if (value.contains("area")) entry.text.number = numberMember(value, "area", where);
  if (value.contains("version")) entry.text.version = textMember(value, "version", where);
  return entry;
}

std::vector<Entry> entriesOfManifest(const std::string& path) {
  const std::string folder = fs::path(path).has_parent_path() ? fs::path(path).parent_path().string() : ".";
  std::vector<Entry> entries;
  const Json manifest = readJson(path);
  for (const Json& value : requireArray(manifest, path)) {
    entries.push_back(entryOf(value, folder, "block " + std::to_string(entries.size() + 1) + " of " + path));
  }
  return entries;
}

// [screen_]T<type>_L,T,R,B. Throws std::invalid_argument for other names.
Entry entryOfName(const std::string& name) {
  const std::size_t rect = name.rfind('_');
  const std::size_t before = rect == std::string::npos || rect == 0 ? rect : name.rfind('_', rect - 1);
  const std::size_t type = before == std::string::npos ? 0 : before + 1;
  Entry entry;
  const char* const end = name.data() + (rect == std::string::npos ? 0 : rect);
  const char* const number = std::min(name.data() + type + 1, end);
  const auto parsed = std::from_chars(number, end, entry.area.type);
  if (parsed.ec != std::errc() || parsed.ptr != end || name[type] != 'T') {
    throw std::invalid_argument("it is not named [screen_]T<type>_L,T,R,B.npy");
  }
  entry.area.screen = type == 0 ? "" : name.substr(0, before);
  entry.area.rect = parseRect(name.substr(rect + 1));
  return entry;
}

std::vector<Entry> entriesOfFolder(const std::string& folder) {
  std::error_code error;
  std::vector<Entry> entries;
  for (const auto& found : fs::directory_iterator(folder, error)) {
    if (found.path().extension() != ".npy") continue;
    try {
      entries.push_back(entryOfName(found.path().stem().string()));
      entries.back().path = found.path().string();
    } catch (const std::invalid_argument& reason) {
      throw ToolError(kFileProblem, found.path().string() + " is refused: " + reason.what());
    }
  }
  if (error) throw ToolError(kFileProblem, "cannot read the folder " + folder + ": " + error.message());
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.path < b.path; });
  return entries;
}

std::uint64_t fileBytes(const std::vector<Entry>& entries) {
  std::uint64_t bytes = 0;
  for (const Entry& entry : entries) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(entry.path, error);
    if (!error) bytes += size;
  }
  return bytes;
}

// The bytes of the file that was stored.
std::uint64_t put(Session& session, const Entry& entry) {
  try {
    std::vector<unsigned char> file = readWholeFile(entry.path);
    const std::uint64_t size = file.size();
    CellBlock block = blockFromArray(parseNpy(std::move(file), entry.path), entry.area.rect, {});
    const auto record = recordOf(session, entry.area, entry.text, block);
    requireArea(session, session.manager().insertData(record.get()), entry.area, block.rect);
    return size;
  } catch (const ToolError& error) {
    throw ToolError(error.code(), entry.path + ": " + error.what() + "; nothing was stored");
  }
}

}  // namespace

void putAll(Context& context, const std::string& file, const BulkSource& source) {
  const auto entries = source.manifest.empty() ? entriesOfFolder(source.folder) : entriesOfManifest(source.manifest);
  if (entries.empty()) throw ToolError(kFileProblem, "there are no blocks to store");
  Session session = openDatabase(context, file);
  {
    Progress progress("coef put", fileBytes(entries));
    Transaction transaction(session);
    for (const Entry& entry : entries) progress.advance(put(session, entry));
    transaction.commit();
  }
  session.close();
  message("stored " + std::to_string(entries.size()) + " blocks");
}

}  // namespace tovrtool
