// JSON as the tool writes and reads it. Everything that is read may have been made by anybody: each function throws
// Error, which names the place, for what is not as it should be.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace tovrdb {

using Json = nlohmann::ordered_json;

// Text to print; bytes that are not UTF-8 are shown as replacement characters, and all that escapeControls knows as
// escapes.
std::string jsonText(const Json& value);

// The JSON in the file at `path`.
Json readJson(const std::string& path);

// A member of an object. `where` is what the object is to the reader: "row 3 of Coef".
const Json& member(const Json& object, const char* name, const std::string& where);
std::string textMember(const Json& object, const char* name, const std::string& where);
std::int32_t numberMember(const Json& object, const char* name, const std::string& where);

// Nothing when it is not one, or takes more than 64 bits with sign.
std::optional<std::int64_t> wholeNumber(const Json& value);

// `value` itself, after a look at its kind.
const Json& requireArray(const Json& value, const std::string& where);
const Json& requireObject(const Json& value, const std::string& where);

[[noreturn]] void refuseJson(const std::string& where, const std::string& reason);

// The path of a file inside `folder`. Throws Error for a name that leads out of it: absolute, with "..", or through
// a link.
std::string pathInside(const std::string& folder, const std::string& name);

}  // namespace tovrdb
