// Checks of a database file: its pages, its schema, its payloads, and whether its rows make sense together.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "client/base/Listener.h"
#include "client/contents/RowNames.h"
#include "client/contents/StoredArea.h"
#include "client/session/Damage.h"
#include "client/session/Session.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {

// Sentences about a file. Only the first are kept as text: areas that overlap can be millions of pairs.
class Findings {
 public:
  static constexpr std::size_t kMostKept = 100;

  void add(std::string text);
  // `count` more that are counted only.
  void addCounted(std::uint64_t count) { count_ += count; }

  bool empty() const { return count_ == 0; }
  std::uint64_t count() const { return count_; }
  const std::vector<std::string>& kept() const { return kept_; }
  // At most `most` of them; if there are others, one more line says how many: "and 7,998,990 more".
  std::vector<std::string> first(std::size_t most) const;

 private:
  std::vector<std::string> kept_;
  std::uint64_t count_ = 0;
};

// The result of one check.
struct Verdict {
  std::string name;
  std::string detail;  // what was checked
  Findings faults;     // data is lost, or will be
  Findings warnings;   // unusual, but stored on request: nothing is lost, and the library can use it

  bool ok() const { return faults.empty(); }
};

// The outcome of one check or of several.
enum class Soundness { kSound, kWarning, kFault };
Soundness soundnessOf(const Verdict& verdict);
Soundness soundnessOf(const std::vector<Verdict>& verdicts);  // the worst of them

// Bytes that checkDatabase reads, as it reports them to `progress`.
std::uint64_t bytesToCheck(Session& session);

// The faults of the pages of an open file, or of the attached file that `schema` names; empty if there are none.
// Engines of the 3.x generation read the pages that are in use; later ones verify the checksums of all pages.
std::vector<std::string> pageFaults(Session& session, const std::string& schema = "main");

// One verdict per check. A check that damage interrupts reports the damage as its last fault. Lost data is named by
// what it was: an area with its rectangle and screen, a type of data, a measurement. `schema`: from expectedSchema.
std::vector<Verdict> checkDatabase(Session& session, const std::vector<Row>& schema, Progress& progress);

// Type, name, table and create statement of every table, index, trigger and view of a file, without the engine's own.
std::vector<Row> schemaOf(Session& session);

// The schema of a file that the library makes. REQUIRES: no Session is open in this process.
std::vector<Row> expectedSchema(const std::string& plugin);

// The parts of checkDatabase that have a source of their own.

// Faults: tables that are missing or have another definition; triggers and views, which change what statements do;
// unique indexes, which refuse rows. Warnings: other tables and indexes.
void compareSchema(const std::vector<Row>& expected, const std::vector<Row>& present, Verdict& verdict);

struct BlockSize {
  std::uint64_t bytes = 0;
  std::int64_t cellBytes = 0;
};
using BlockSizes = std::map<std::int64_t, BlockSize>;  // of the blocks that can be decrypted, by key

// Faults: a block whose size does not match its rectangle, a rectangle without cells.
void checkLengths(const std::vector<Placement>& areas, const BlockSizes& sizes, Verdict& verdict);

// Faults: columns of screens and placements that do not hold 32-bit numbers. Warnings: a screen that no request
// reaches.
void checkScreens(Session& session, const RowNames& names, Verdict& verdict);

// Warnings: areas of which the library cannot read every cell.
void checkInsideScreens(const std::vector<Placement>& areas, Verdict& verdict);
void checkOverlaps(const std::vector<Placement>& areas, Verdict& verdict);

}  // namespace tovrdb
