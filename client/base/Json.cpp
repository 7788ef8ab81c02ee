#include "client/base/Json.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "client/base/Error.h"
#include "client/base/Text.h"

namespace tovrdb {
namespace {

constexpr std::size_t kDeepest = 16;
constexpr std::uintmax_t kMostJsonBytes = std::uintmax_t{1} << 28;  // bytes
constexpr std::size_t kMostMembers = 1000;       // of one object; finding one compares it with those before it
constexpr std::size_t kMostValues = 10'000'000;  // in all; each takes up to 100 bytes of memory

// Refuses, before it is parsed, a text that would take excessive memory or time. Brackets, colons and commas count
// outside of strings only.
void requireModest(const std::vector<unsigned char>& bytes, const std::string& path) {
  std::vector<std::size_t> members;  // of every open object and list
  std::size_t values = 0;
  bool inString = false;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned char c = bytes[i];
    if (c == '"') inString = !inString;
    if (inString && c == '\\') ++i;
    if (inString) continue;
    if (c == '{' || c == '[') members.push_back(0);
    if ((c == '}' || c == ']') && !members.empty()) members.pop_back();
    if (c == ':' && !members.empty() && ++members.back() > kMostMembers) {
      refuseJson(path, fmt::format("an object in it has more than {} members", kMostMembers));
    }
    if (c == ',' && ++values > kMostValues) refuseJson(path, fmt::format("it has more than {} values", kMostValues));
    if (members.size() > kDeepest) refuseJson(path, "it is nested too deeply");
  }
}

// "line 1, column 5: ..." of "[json.exception.parse_error.101] parse error at line 1, column 5: ..."
std::string reasonOf(const Json::exception& failure) {
  const std::string text = failure.what();
  const std::string title = "parse error at ";
  const std::size_t bracket = text.find("] ");
  const std::size_t begin = bracket == std::string::npos ? 0 : bracket + 2;
  return text.substr(text.compare(begin, title.size(), title) == 0 ? begin + title.size() : begin);
}

}  // namespace

std::string jsonText(const Json& value) {
  return escapeControls(value.dump(2, ' ', false, Json::error_handler_t::replace), LineEnds::kKeep) + "\n";
}

void requireJsonSize(std::uintmax_t bytes, const std::string& name) {
  if (bytes > kMostJsonBytes) throw Error(kFileProblem, "{} is too large for a manifest (256 MiB at most)", name);
}

Json parseJson(const std::vector<unsigned char>& text, const std::string& name) {
  requireJsonSize(text.size(), name);
  requireModest(text, name);
  try {
    return Json::parse(text.begin(), text.end());
  } catch (const Json::exception& failure) {
    throw Error(kFileProblem, "{} is not valid JSON: {}", name, reasonOf(failure));
  }
}

const Json& member(const Json& object, const char* name, const std::string& where) {
  const auto found = requireObject(object, where).find(name);
  if (found == object.end()) refuseJson(where, fmt::format("\"{}\" is missing", name));
  return *found;
}

std::string textMember(const Json& object, const char* name, const std::string& where) {
  const Json& value = member(object, name, where);
  if (!value.is_string()) refuseJson(where, fmt::format("\"{}\" is not a string", name));
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
  throw Error(kFileProblem, "{} cannot be used: {}", where, reason);
}

}  // namespace tovrdb
