// Ends with 0 when the plug-in refuses to work in a process whose sqlite3_* functions have no page encryption.
#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "host/PluginHost.h"
#include "tests/support/TemporaryFolder.h"

namespace {

int failures = 0;

void expect(bool fact, const std::string& text) {
  if (fact) return;
  ++failures;
  std::printf("not so: %s\n", text.c_str());
}

}  // namespace

int main() {
  if (sqlite3_compileoption_used("HAS_CODEC") != 0) return std::puts("this is not the plain engine"), 2;
  const tovrtest::TemporaryFolder folder;
  const std::string file = (folder.path() / "file.db").string();
  tovrhost::PluginHost host(TOVR_PLUGIN_FILE);
  expect(host.manager().openDB(file, "any key") == SQLITE_ERROR, "opening fails");
  const std::string text = host.manager().errMsg();
  expect(text.find("page encryption") != std::string::npos, "the error text says why: " + text);
  expect(!std::filesystem::exists(file), "no file is made");
  expect(host.manager().createTables() != SQLITE_OK, "creating tables fails");
  expect(host.connection().exec("select 1") != SQLITE_OK, "running a statement fails");
  return failures == 0 ? 0 : 1;
}
