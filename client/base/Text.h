// Texts for people: lists, numbers, and texts from untrusted sources made safe for a terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovrdb {

// "a, b, c"; the beginning of a long list: "a, b and 12 more"; "none" for an empty list.
std::string shortList(const std::vector<std::string>& items, std::string_view separator = ", ");

// "37,324,800"
std::string grouped(std::int64_t number);

// "1 area", "2 areas".
std::string counted(std::size_t number, std::string_view singular);

// The number of UTF-8 characters; an invalid sequence counts as one.
std::size_t characters(std::string_view text);

// The beginning of valid UTF-8: at most so many bytes, and no partial character at its end.
std::string_view firstBytes(std::string_view text, std::size_t most);

// The text with each invalid sequence of UTF-8 replaced by U+FFFD.
std::string validText(std::string_view text);

enum class LineEnds { kKeep, kEscape };
// UTF-8 with the characters that could steer a terminal or turn the direction of writing as JSON's escapes (\u001b):
// control characters U+0000 to U+001F and U+007F to U+009F, bidirectional marks, embeddings, overrides and isolates,
// and the separators of lines and paragraphs. REQUIRES: valid UTF-8.
std::string escapeControls(std::string_view text, LineEnds lineEnds);

// The text as valid UTF-8 on one line, with escapes, as safe to show as a stored name must be. A text of more than
// `most` bytes loses its middle.
constexpr std::size_t kLongestLine = 4000;  // dozens of names of usual length
std::string printable(std::string_view text, std::size_t most = kLongestLine);

}  // namespace tovrdb
