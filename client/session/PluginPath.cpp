#include "client/session/PluginPath.h"

#include <cstdlib>
#include <filesystem>

#include "client/disk/Platform.h"

namespace tovrdb {
namespace {

namespace fs = std::filesystem;

// A bare name means a file here first, as for every other file that is named on a command line.
std::string asFile(const std::string& name) {
  std::error_code error;
  return fs::exists(pathOf(name), error) ? textOf(fs::absolute(pathOf(name), error)) : name;
}

constexpr char kLibraryFolder[] = "../" TOVRDB_LIBRARY_FOLDER;

}  // namespace

std::string pluginPath(const std::string& given) {
  if (!given.empty()) return asFile(given);
  const char* named = std::getenv("TOVRDB_PLUGIN");
  if (named != nullptr && *named != '\0') return asFile(named);

  const fs::path folder = pathOf(programFolder());
  const char* const places[] = {".", "../lib", kLibraryFolder, "../src"};
  for (const char* place : places) {
    std::error_code error;
    const fs::path candidate = folder / place / TOVRDB_PLUGIN_NAME;
    if (!folder.empty() && fs::exists(candidate, error)) return textOf(candidate.lexically_normal());
  }
  return TOVRDB_PLUGIN_NAME;
}

}  // namespace tovrdb
