#include "client/storing/BlockFiles.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "client/base/Error.h"
#include "client/base/Json.h"
#include "client/disk/FileInput.h"
#include "client/disk/FileOutput.h"
#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

Rect rectOfJson(const Json& value, const std::string& where) {
  std::vector<std::int64_t> edges;
  for (const Json& edge : requireArray(value, where + ", \"rect\"")) {
    edges.push_back(wholeNumber(edge).value_or(-1));
  }
  if (edges.size() != 4) refuseJson(where, "\"rect\" is not a list of four whole numbers");
  try {
    return rectOfEdges(edges[0], edges[1], edges[2], edges[3]);
  } catch (const std::invalid_argument& error) {
    refuseJson(where, fmt::format("\"rect\": {}", error.what()));
  }
}

BlockFile blockOfJson(const Json& value, const std::string& folder, const std::string& where) {
  constexpr const char* kKnown[] = {"file", "type", "rect", "screen", "area", "version", "scale", "unit"};
  for (const auto& item : requireObject(value, where).items()) {
    const auto same = [&](const char* name) { return item.key() == name; };
    if (std::none_of(std::begin(kKnown), std::end(kKnown), same)) {
      refuseJson(where, fmt::format("\"{}\" is not known", item.key()));
    }
  }
  BlockFile block;
  block.path = pathInside(folder, textMember(value, "file", where));
  block.area.type = numberMember(value, "type", where);
  block.area.rect = rectOfJson(member(value, "rect", where), where);
  if (value.contains("screen")) block.area.screen = textMember(value, "screen", where);
  if (value.contains("area")) block.text.number = numberMember(value, "area", where);
  if (value.contains("version")) block.text.version = textMember(value, "version", where);
  try {
    if (value.contains("scale")) block.text.form.scale = parseScale(textMember(value, "scale", where));
    if (value.contains("unit")) block.text.form.unit = parseUnit(textMember(value, "unit", where));
  } catch (const std::invalid_argument& error) {
    refuseJson(where, error.what());
  }
  return block;
}

// [screen_]T<type>_L,T,R,B. Throws std::invalid_argument for other names.
BlockFile blockOfName(const std::string& name) {
  const std::size_t rect = name.rfind('_');
  const std::size_t before = rect == std::string::npos || rect == 0 ? rect : name.rfind('_', rect - 1);
  const std::size_t type = before == std::string::npos ? 0 : before + 1;
  BlockFile block;
  const char* const end = name.data() + (rect == std::string::npos ? 0 : rect);
  const char* const number = std::min(name.data() + type + 1, end);
  const auto parsed = std::from_chars(number, end, block.area.type);
  if (parsed.ec != std::errc() || parsed.ptr != end || name[type] != 'T') {
    throw std::invalid_argument("it is not named [screen_]T<type>_L,T,R,B.npy");
  }
  block.area.screen = type == 0 ? "" : name.substr(0, before);
  block.area.rect = parseRect(name.substr(rect + 1));
  return block;
}

CellBlock readBlock(const BlockFile& file, std::optional<NumberType>& dtype) {
  NpyArray array = parseNpy(readWholeFile(file.path), file.path);
  dtype = array.dtype;
  try {
    return blockFromArray(std::move(array), file.area.rect, {});
  } catch (const Error& error) {
    throw error.about(file.path);
  }
}

}  // namespace

std::vector<BlockFile> blocksOfManifest(const std::string& path, const std::vector<unsigned char>& text) {
  const fs::path parent = pathOf(path).parent_path();
  const std::string folder = parent.empty() ? "." : textOf(parent);
  std::vector<BlockFile> blocks;
  const Json manifest = parseJson(text, path);
  for (const Json& value : requireArray(manifest, path)) {
    blocks.push_back(blockOfJson(value, folder, fmt::format("block {} of {}", blocks.size() + 1, path)));
  }
  return blocks;
}

std::vector<BlockFile> blocksOfFolder(const std::string& folder) {
  std::error_code error;
  std::vector<BlockFile> blocks;
  for (const auto& found : fs::directory_iterator(pathOf(folder), error)) {
    if (found.path().extension() != ".npy") continue;
    try {
      blocks.push_back(blockOfName(textOf(found.path().stem())));
      blocks.back().path = textOf(found.path());
    } catch (const std::invalid_argument& reason) {
      throw Error(kFileProblem, "{} is refused: {}", textOf(found.path()), reason.what());
    }
  }
  if (error) throw Error(kFileProblem, "cannot read the folder {}: {}", folder, error.message());
  std::sort(blocks.begin(), blocks.end(), [](const BlockFile& a, const BlockFile& b) { return a.path < b.path; });
  return blocks;
}

CellBlock readBlock(const BlockFile& file) {
  std::optional<NumberType> dtype;
  return readBlock(file, dtype);
}

std::vector<WantedBlock> wantedOf(const std::vector<BlockFile>& files) {
  std::vector<WantedBlock> wanted;
  std::vector<std::string> faults;
  for (const BlockFile& file : files) {
    try {
      BlockText text = file.text;
      const std::int32_t cellBytes = readBlock(file, text.dtype).cellBytes;
      wanted.push_back({file.path, file.area, text, cellBytes});
    } catch (const Error& error) {
      faults.emplace_back(error.what());
    }
  }
  if (faults.empty()) return wanted;
  if (faults.size() == 1) throw Error(kFileProblem, "{}; nothing was stored", faults[0]);
  Error error(kFileProblem, "{} files cannot be used; nothing was stored", faults.size());
  error.setDetails(std::move(faults));
  throw error;
}

}  // namespace tovrdb
