#include "tool/io/JsonText.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <stdexcept>

#include "tool/io/FileInput.h"
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

Json readJson(const std::string& path) {
  std::error_code error;
  if (fs::file_size(path, error) > kMostBytes && !error) {
    throw ToolError(kFileProblem, path + " is too large for a manifest (256 MiB at most)");
  }
  const auto bytes = readWholeFile(path);
  const auto limitDepth = [](int depth, Json::parse_event_t, Json&) {
    if (depth > kDeepest) throw std::invalid_argument("it is nested too deeply");
    return true;
  };
  try {
    return Json::parse(bytes.begin(), bytes.end(), limitDepth);
  } catch (const Json::exception& failure) {
    throw ToolError(kFileProblem, path + " is no JSON: " + failure.what());
  } catch (const std::invalid_argument& failure) {
    throw ToolError(kFileProblem, path + " is refused: " + failure.what());
  }
}

const Json& member(const Json& object, const char* name, const std::string& where) {
  const auto found = requireObject(object, where).find(name);
  if (found == object.end()) refuseJson(where, std::string("\"") + name + "\" is missing");
  return *found;
}

std::string textMember(const Json& object, const char* name, const std::string& where) {
  const Json& value = member(object, name, where);
  if (!value.is_string()) refuseJson(where, std::string("\"") + name + "\" is no text");
  return value.get<std::string>();
}

std::int32_t numberMember(const Json& object, const char* name, const std::string& where) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto number = wholeNumber(member(object, name, where));
  if (!number || *number > Limits::max() || *number < Limits::min()) {
    refuseJson(where, std::string("\"") + name + "\" is no whole number of 32 bits");
  }
  return static_cast<std::int32_t>(*number);
}

std::optional<std::int64_t> wholeNumber(const Json& value) {
  if (!value.is_number_integer()) return std::nullopt;
  const bool tooLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
  return tooLarge ? std::nullopt : std::optional<std::int64_t>(value.get<std::int64_t>());
}

const Json& requireArray(const Json& value, const std::string& where) {
  if (!value.is_array()) refuseJson(where, "it is no list");
  return value;
}

const Json& requireObject(const Json& value, const std::string& where) {
  if (!value.is_object()) refuseJson(where, "it is no object");
  return value;
}

void refuseJson(const std::string& where, const std::string& reason) {
  throw ToolError(kFileProblem, where + " is refused: " + reason);
}

std::string pathInside(const std::string& folder, const std::string& name) {
  const fs::path relative(name);
  const bool up = std::find(relative.begin(), relative.end(), "..") != relative.end();
  const bool zero = name.find('\0') != std::string::npos;
  if (name.empty() || zero || up || relative.has_root_path()) {
    throw ToolError(kFileProblem, "the name '" + name + "' is refused: it does not lie in " + folder);
  }
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  const fs::path file = error ? fs::path() : fs::canonical(root / relative, error);
  if (error) throw ToolError(kFileProblem, "the file '" + name + "' in " + folder + ": " + error.message());
  if (!begins(file, root) || !fs::is_regular_file(file, error)) {
    throw ToolError(kFileProblem, "the name '" + name + "' is refused: it is no file in " + folder);
  }
  return file.string();
}

}  // namespace tovrtool
