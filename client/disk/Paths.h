// Paths are UTF-8 texts throughout the tool, and std::filesystem gets and gives them through these two functions: on
// Windows, built by MinGW, it would take the bytes of a text for characters.
#pragma once

#include <filesystem>
#include <string>

namespace tovrdb {

inline std::filesystem::path pathOf(const std::string& text) { return std::filesystem::u8path(text); }
inline std::string textOf(const std::filesystem::path& path) { return path.u8string(); }

}  // namespace tovrdb
