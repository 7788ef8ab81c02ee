#include "tool/io/JsonText.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "tool/io/FileInput.h"
#include "tool/system/Paths.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

namespace fs = std::filesystem;

constexpr int kDeepest = 16;
constexpr std::uintmax_t kMostBytes = std::uintmax_t{1} << 28;

// Whether `path` begins with all of `folder`.
bool begins(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

}  // namespace

std::string jsonText(const Json& value) { return value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n"; }

std::string validText(const std::string& text) {
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace)).get<std::string>();
}

Json readJson(const std::string& path) {
  std::error_code error;
  if (fs::file_size(pathOf(path), error) > kMostBytes && !error) {
    throw ToolError(kFileProblem, "{} is too large for a manifest (256 MiB at most)", path);
  }
  const auto bytes = readWholeFile(path);
  const auto limitDepth = [](int depth, Json::parse_event_t, Json&) {
    if (depth > kDeepest) throw std::invalid_argument("it is nested too deeply");
    return true;
  };
  try {
    return Json::parse(bytes.begin(), bytes.end(), limitDepth);
  } catch (const Json::exception& failure) {
    throw ToolError(kFileProblem, "{} is not valid JSON: {}", path, failure.what());
  } catch (const std::invalid_argument& failure) {
    refuseJson(path, failure.what());
  }
}

const Json& member(const Json& object, const char* name, const std::string& where) {
  const auto found = requireObject(object, where).find(name);
  if (found == object.end()) refuseJson(where, fmt::format("\"{}\" is missing", name));
  return *found;
}

std::string textMember(const Json& object, const char* name, const std::string& where) {
  const Json& value = member(object, name, where);
  if (!value.is_string()) refuseJson(where, fmt::format("\"{}\" is not a text", name));
  return value.get<std::string>();
}

std::int32_t numberMember(const Json& object, const char* name, const std::string& where) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto number = wholeNumber(member(object, name, where));
  if (!number || *number > Limits::max() || *number < Limits::min()) {
    refuseJson(where, fmt::format("\"{}\" is not a whole number of 32 bits", name));
  }
  return static_cast<std::int32_t>(*number);
}

std::optional<std::int64_t> wholeNumber(const Json& value) {
  if (!value.is_number_integer()) return std::nullopt;
  const bool tooLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
  return tooLarge ? std::nullopt : std::optional<std::int64_t>(value.get<std::int64_t>());
}

const Json& requireArray(const Json& value, const std::string& where) {
  if (!value.is_array()) refuseJson(where, "it is not a list");
  return value;
}

const Json& requireObject(const Json& value, const std::string& where) {
  if (!value.is_object()) refuseJson(where, "it is not an object");
  return value;
}

void refuseJson(const std::string& where, const std::string& reason) {
  throw ToolError(kFileProblem, "{} is refused: {}", where, reason);
}

std::string pathInside(const std::string& folder, const std::string& name) {
  const fs::path relative = pathOf(name);
  const bool up = std::find(relative.begin(), relative.end(), "..") != relative.end();
  const bool zero = name.find('\0') != std::string::npos;
  if (name.empty() || zero || up || relative.has_root_path()) {
    throw ToolError(kFileProblem, "the name '{}' is refused: it does not lie in {}", name, folder);
  }
  std::error_code error;
  const fs::path root = fs::canonical(pathOf(folder), error);
  const fs::path file = error ? fs::path() : fs::canonical(root / relative, error);
  if (error) throw ToolError(kFileProblem, "the file '{}' in {}: {}", name, folder, error.message());
  if (!begins(file, root) || !fs::is_regular_file(file, error)) {
    throw ToolError(kFileProblem, "the name '{}' is refused: it is not a file in {}", name, folder);
  }
  return textOf(file);
}

}  // namespace tovrtool
