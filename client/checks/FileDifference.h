// What differs between two database files: found here, shown by the command.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/contents/Inventory.h"
#include "client/session/SqlQuery.h"
#include "client/statistics/BlockDifference.h"

namespace tovrdb {

struct FileAndKey {
  std::string path;
  std::string key;
};

struct BytesDifference {
  std::size_t sizeBefore = 0;
  std::size_t sizeAfter = 0;
  std::size_t differing = 0;  // of those that both have
  std::size_t first = 0;      // the first of them
};

struct Difference {
  enum class Kind { kOnlyBefore, kOnlyAfter, kField, kCells, kBytes, kFault };
  std::string item;
  ItemPlace place;
  Kind kind;
  // kField: of what, and its texts. Items that one file lacks: field and text of the whole. kFault: why the payload of
  // one file, or of each, cannot be read.
  std::string field;
  std::string before;
  std::string after;
  BlockDifference cells;
  std::optional<NumberForm> form;  // of the numbers that `cells` compares; nothing where it compares bits
  BytesDifference bytes;
};

// A block that both files hold: the cells of both, without bytes when they are equal in every one, and the form of
// their numbers as far as it is known.
using VisitBlock = std::function<void(const StoredArea& area, const CellBlock& before, const CellBlock& after,
                                      const std::optional<NumberForm>& form)>;

// As it is stored; nothing and the reason if that cannot be read.
struct StoredPayload {
  Bytes bytes;
  std::string fault;
};

struct Comparing {
  FormOptions form;  // blocks whose cells are not a whole number of such values are compared to the bit
  std::optional<Tolerance> tolerance;
};

class FileComparison {
 public:
  // Reads what both files hold, but no payloads. Throws Error, which names the file.
  FileComparison(const Access& access, FileAndKey before, FileAndKey after);

  // Areas of blocks that both hold in the same shape, in the order of the first file; if one file's cannot be read, the
  // other's.
  std::vector<StoredArea> commonAreas() const;

  // Compares everything. Only one file can be open at a time, so payloads are read in turns, some hundred megabytes of
  // the first file and then the same ones of the second. Throws Error where a tolerance is asked for and nothing
  // tells the numbers of blocks that differ.
  std::vector<Difference> compare(const Comparing& how, const VisitBlock& visit);

 private:
  struct Pair {
    const Item* before;
    const Item* after;
  };

  std::vector<Item> inventory(const FileAndKey& file) const;
  void pairItems();
  void compareBatch(std::size_t from, std::size_t to, const Comparing& how, const VisitBlock& visit);
  void compareBlobs(Session& session, const Pair& pair, const StoredPayload& before, const Comparing& how,
                    const VisitBlock& visit);
  void addFault(const Pair& pair, const std::string& before, const std::string& after);
  void addCells(const Pair& pair, const CellBlock& before, const CellBlock& after,
                const std::optional<NumberForm>& form, const std::optional<Tolerance>& tolerance);

  Access access_;
  FileAndKey before_;
  FileAndKey after_;
  std::vector<Item> itemsBefore_;
  std::vector<Item> itemsAfter_;
  std::vector<Pair> blobs_;
  std::vector<Difference> differences_;
};

}  // namespace tovrdb
