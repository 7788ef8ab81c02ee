// JSON as it is written and read. Anybody may have made what is read: each function throws Error, which names the
// place, for anything unexpected.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tovrdb {

using Json = nlohmann::ordered_json;

// Text to print: invalid UTF-8 becomes replacement characters, and what escapeControls handles becomes escapes.
std::string jsonText(const Json& value);

// The JSON in a text; `name` is what messages call it. Refuses what would take excessive memory or time: texts over
// 256 MiB, deep nesting, millions of values.
Json parseJson(const std::vector<unsigned char>& text, const std::string& name);
void requireJsonSize(std::uintmax_t bytes, const std::string& name);

// A member of an object. `where` is what the object is to the reader: "row 3 of Coef".
const Json& member(const Json& object, const char* name, const std::string& where);
std::string textMember(const Json& object, const char* name, const std::string& where);
std::int32_t numberMember(const Json& object, const char* name, const std::string& where);

// Nothing if it is not a whole number, or does not fit into 64 bits with sign.
std::optional<std::int64_t> wholeNumber(const Json& value);

// `value` itself, which must be of the kind.
const Json& requireArray(const Json& value, const std::string& where);
const Json& requireObject(const Json& value, const std::string& where);

[[noreturn]] void refuseJson(const std::string& where, const std::string& reason);

}  // namespace tovrdb
