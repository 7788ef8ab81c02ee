#include "tool/commands/OpenDatabase.h"

#include <filesystem>

#include "client/base/Error.h"
#include "client/disk/Platform.h"
#include "client/session/FileDiagnosis.h"
#include "tool/io/KeySource.h"

namespace tovrdb::tool {

Session openDatabase(const Context& context, const std::string& path) {
  requireDatabaseFile(path);
  requireOtherThanLog(context, path);
  return Session::openExisting(context.options.access, path, readKey(context.options.keyFile, KeyUse::kOpen));
}

Session openDatabase(const Context& context, const std::string& path, const std::string& key) {
  requireOtherThanLog(context, path);
  return Session::openExisting(context.options.access, path, key);
}

void requireOtherThanLog(const Context& context, const std::string& path) {
  std::error_code error;
  if (std::filesystem::equivalent(pathOf(path), pathOf(context.options.log), error)) {
    throw Error(kInvalid, "--log would write into the database: give another file");
  }
}

}  // namespace tovrdb::tool
