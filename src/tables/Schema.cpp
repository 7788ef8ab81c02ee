#include "tables/Schema.h"

namespace tovr {
namespace {

// One create statement: the table's name, then its columns, with a referenced table's name between two pieces.
std::string create(const std::string& name, const std::string& columns) {
  return "create table if not exists " + name + columns;
}

}  // namespace

std::string createDBInfo(const std::string& name) {
  return create(name,
                "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                "    dbname   VCHAR(60)      NOT NULL,"
                "    dbtype   INTEGER        NOT NULL,"
                "    datastructversion   VCHAR(60)      NOT NULL,"
                "    softwareversion   VCHAR(60)      NOT NULL,"
                "    softwaretype   VCHAR(60)      NOT NULL,"
                "    dbversion   VCHAR(60)      NOT NULL,"
                "    ctime   TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')),"
                "    mtime   TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')))");
}

std::string createAttachDBList(const std::string& name) {
  return create(name,
                "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                "    dbname   VCHAR(60)      NOT NULL,"
                "    ctime    TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')),"
                "    mtime    TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')))");
}

std::string createScreenInfo(const std::string& name, const std::string& databases) {
  const std::string columns = std::string(
                                  "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                                  "    dbid         INTEGER      NOT NULL,"
                                  "    screenname   VCHAR(60),"
                                  "    top            INTEGER      NOT NULL,"
                                  "    left           INTEGER      NOT NULL,"
                                  "    bottom         INTEGER      NOT NULL,"
                                  "    right          INTEGER      NOT NULL,"
                                  "    ctime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    foreign key (dbid)  references ") +
                              databases + "(id))";
  return create(name, columns);
}

std::string createCoef(const std::string& name) {
  return create(name,
                " (id INTEGER PRIMARY KEY AUTOINCREMENT,"
                "    data BLOB NOT NULL,"
                "    databitwidth INTEGER NOT NULL,"
                "    version VCHAR(60) NOT NULL)");
}

std::string createCoefInfo(const std::string& name, const std::string& coefs, const std::string& screens) {
  const std::string columns = std::string(
                                  "(    id INTEGER PRIMARY KEY      AUTOINCREMENT,"
                                  "    screenid        INTEGER      NOT NULL,"
                                  "    coefid          INTEGER      NOT NULL,"
                                  "    coeftablename   VCHAR(60) NOT NULL,"
                                  "    coeftype        INTEGER      NOT NULL,"
                                  "    areaid          INTEGER      NOT NULL,"
                                  "    top             INTEGER      NOT NULL,"
                                  "    left            INTEGER      NOT NULL,"
                                  "    bottom          INTEGER      NOT NULL,"
                                  "    right           INTEGER      NOT NULL,"
                                  "    multilayersize  INTEGER      ,"
                                  "    multilayerlist  BLOB         ,"
                                  "    ctime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    foreign key(screenid)  references ") +
                              screens +
                              "(id),"
                              "     foreign key(coefid)  references " +
                              coefs + "(id))";
  return create(name, columns);
}

std::string createLumChromData(const std::string& name) {
  return create(name,
                "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                "    data          BLOB     NOT NULL,"
                "    version  VCHAR(60)     NOT NULL)");
}

std::string createLumChromDataInfo(const std::string& name, const std::string& screens, const std::string& blobs) {
  const std::string columns = std::string(
                                  "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                                  "    screenid VCHAR(60)      NOT NULL,"
                                  "    dataid         INTEGER      NOT NULL,"
                                  "    datatablename VCHAR(60) NOT NULL,"
                                  "    datatype       INTEGER      NOT NULL,"
                                  "    top            INTEGER      NOT NULL,"
                                  "    left           INTEGER      NOT NULL,"
                                  "    bottom         INTEGER      NOT NULL,"
                                  "    right          INTEGER      NOT NULL,"
                                  "    ctime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    mtime TimeStamp NOT NULL DEFAULT (datetime('now','localtime')),"
                                  "    foreign key(screenid)  references ") +
                              screens +
                              "(id),"
                              "     foreign key(dataid)  references " +
                              blobs + "(id))";
  return create(name, columns);
}

std::string createData(const std::string& name) {
  return create(name,
                " (    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                "    data          BLOB     NOT NULL,"
                "    version  VCHAR(60)     NOT NULL)");
}

std::string createDataInfo(const std::string& name, const std::string& screens, const std::string& blobs) {
  const std::string columns = std::string(
                                  "(    id INTEGER PRIMARY KEY     AUTOINCREMENT,"
                                  "    screenid VCHAR(60)      NOT NULL,"
                                  "    dataid         INTEGER      NOT NULL,"
                                  "    datatype       INTEGER      NOT NULL,"
                                  "    ctime      TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')),"
                                  "    mtime      TimeStamp NOT NULL DEFAULT (datetime('now', 'localtime')),"
                                  "    foreign key(screenid)  references ") +
                              screens +
                              "(id),"
                              "     foreign key(dataid)  references " +
                              blobs + "(id))";
  return create(name, columns);
}

std::string clearSpaced(const std::string& name) {
  return "delete from " + name + ";  UPDATE sqlite_sequence SET seq = 0 WHERE name = '" + name + "'; ";
}

std::string clearDense(const std::string& name) {
  return "delete from " + name + ";  UPDATE sqlite_sequence SET seq = 0 WHERE name='" + name + "';";
}

}  // namespace tovr
