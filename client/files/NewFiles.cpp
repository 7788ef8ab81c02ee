#include "client/files/NewFiles.h"

#include "client/disk/Paths.h"
#include "client/disk/UnfinishedFile.h"

namespace tovrdb {
void requireFree(const std::string& file) { const UnfinishedFile place(file, Existing::kKeep, Writer::kEngine); }

void makeDatabase(const std::string& plugin, const std::string& file, const std::string& key,
                  const DatabaseDescription& description) {
  UnfinishedFile unfinished(file, Existing::kKeep, Writer::kEngine);
  Session session = Session::openNew(plugin, unfinished.path(), key);
  DatabaseDescription named = description;
  if (named.name.empty()) named.name = textOf(pathOf(file).stem());
  fillNew(session, named);
  session.close();
  unfinished.finish();
}

void fillNew(Session& session, const DatabaseDescription& description) {
  session.require(session.manager().createTables());
  auto info = session.host().makeRecord<tovr::DBInfo>();
  info->dbtype = description.type;
  info->dbname = description.name;
  info->datastructversion = description.structureVersion;
  info->softwareversion = description.softwareVersion;
  info->softwaretype = description.softwareType;
  info->dbversion = description.databaseVersion;
  session.require(session.manager().insertData(info.get()));
}

}  // namespace tovrdb
