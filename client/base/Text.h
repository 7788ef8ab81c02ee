// Texts for people: lists, numbers, and what a terminal can show of a text that anybody may have stored.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovrdb {

// "a, b, c"; of long lists the beginning: "a, b and 12 more"; "none" of an empty one.
std::string shortList(const std::vector<std::string>& items, std::string_view separator = ", ");

// "37,324,800"
std::string grouped(std::int64_t number);

// "1 area", "2 areas".
std::string counted(std::size_t number, std::string_view singular);

// Characters of UTF-8; every byte that is not valid counts as one.
std::size_t characters(std::string_view text);

// The beginning of valid UTF-8, at most so many bytes, without half a character at its end.
std::string_view firstBytes(std::string_view text, std::size_t most);

// The text with each invalid sequence of UTF-8 replaced by U+FFFD.
std::string validText(std::string_view text);

enum class LineEnds { kKeep, kEscape };
// UTF-8 with the characters that could steer a terminal or turn the direction of writing as JSON's escapes (\u001b):
// control characters U+0000 to U+001F and U+007F to U+009F, bidirectional marks, embeddings, overrides and isolates,
// and the separators of lines and paragraphs. REQUIRES: valid UTF-8.
std::string escapeControls(std::string_view text, LineEnds lineEnds);

// The text on one line, as a stored name may be shown: escaped, and valid. A text of more than `most` bytes loses its
// middle.
constexpr std::size_t kLongestLine = 4000;  // dozens of names of usual length
std::string printable(std::string_view text, std::size_t most = kLongestLine);

}  // namespace tovrdb
