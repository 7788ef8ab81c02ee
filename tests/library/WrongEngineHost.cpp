// Ends with 0 when the plug-in refuses to work on a process whose sqlite3_* functions have no page encryption.
#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "host/PluginHost.h"

int main() {
  if (sqlite3_compileoption_used("HAS_CODEC") != 0) return std::puts("this is not the plain engine"), 2;
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("tovr-plain-" + std::to_string(std::random_device{}()) + ".db");
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  const int code = host.manager().openDB(file.string(), "any key");
  const std::string text = host.manager().errMsg();
  const bool made = std::filesystem::remove(file);
  std::printf("open: %d, text: %s, file made: %d, next: %d\n", code, text.c_str(), made, host.manager().createTables());
  const bool said = text.find("page encryption") != std::string::npos;
  return code == 1 && said && !made && host.connection().exec("select 1") != 0 ? 0 : 1;
}
