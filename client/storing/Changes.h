// The one way to change a database file: a plan of changes, applied in one transaction.
//
// Rows are written behind applyChanges() and nowhere else. Whatever is to happen with every change (showing it before
// it is made, noting what was there before) belongs there.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "client/base/Json.h"
#include "client/contents/HostData.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"
#include "client/session/Session.h"
#include "client/storing/BlockRows.h"
#include "client/storing/ImportedRows.h"

namespace tovrdb {

// Adds an area with its block.
struct AddBlock {
  BlockContent block;
};

// The area and its block keep their keys.
struct RewriteBlock {
  StoredArea area;
  BlockContent block;
};

// Rewritten by the library, which also decides the rectangle of the screen.
struct UpdateBlock {
  StoredArea area;
  BlockContent block;
};

struct PatchBlock {
  StoredArea area;
  std::vector<Patch> patches;  // in the order in which they are put in
};

// With their blocks, except for those that other areas share.
struct DeleteAreas {
  std::vector<StoredArea> areas;
};

struct AddScreen {
  std::int64_t databaseId = 0;
  std::string name;
  Rect rect{};
};

// Areas and data refer to screens by key and stay where they are.
struct RenameScreen {
  StoredScreen screen;
  std::string name;
};

struct DeleteScreen {
  StoredScreen screen;
};

// Replaces the data of its type.
struct PutData {
  std::int32_t type = 0;
  std::string version;
  Bytes payload;
  std::int64_t screenId = 0;  // under which the data is filed
};

struct DeleteData {
  StoredData data;
};

struct AddMeasurement {
  std::int32_t type = 0;
  Rect rect{};
  std::string version;
  Bytes payload;
};

struct DeleteMeasurements {};

// Makes those of the nine tables that are missing.
struct CreateTables {};

// The description that a file holds of itself.
struct DatabaseDescription {
  int type = 0;  // 0: screens are found by rectangle; 1: by name
  std::string name;
  std::string structureVersion = "1";
  std::string softwareVersion = TOVRDB_VERSION;
  std::string softwareType = "tovrdb";
  std::string databaseVersion = "1";
};

struct AddDescription {
  DatabaseDescription description;
};

// Adds the rows of a table with their keys.
struct ImportRows {
  std::string table;
  const Json* rows = nullptr;  // a list; borrowed until the plan is applied
  BlobReader readBlob;
  std::function<void()> afterRow;
};

// The key that each table issued last, in place of what the engine has counted; keys up to it are not issued again.
struct SetLastKeys {
  std::vector<std::pair<std::string, std::int64_t>> keys;  // by table
};

using Change = std::variant<AddBlock, RewriteBlock, UpdateBlock, PatchBlock, DeleteAreas, AddScreen, RenameScreen,
                            DeleteScreen, PutData, DeleteData, AddMeasurement, DeleteMeasurements, CreateTables,
                            AddDescription, ImportRows, SetLastKeys>;

struct ChangePlan {
  std::vector<Change> changes;       // in the order in which they are made
  std::vector<std::string> notices;  // what a person should know about them once they are made, a line each
};

struct Applied {
  std::vector<std::int64_t> keys;  // one a change: of the block, the screen or the measurement that it wrote; else 0
  std::vector<std::string> notices;
  bool placementRejected = false;  // of a measurement: its bytes are stored, its type and rectangle are not
  SessionState state;              // before anybody else could write
};

// Makes all changes that `plan` returns, in one transaction, or none. The plan is made under the lock of the
// transaction, so that nobody writes between the decision and the rows; it reads, decides, and throws Error if there
// are objections. Throws Error also when the library or the engine refuses, or a source of cells fails.
Applied applyChanges(Session& session, const std::function<ChangePlan(Session&)>& plan);

}  // namespace tovrdb
