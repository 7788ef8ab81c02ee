// The differences between two database files.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "client/contents/Inventory.h"
#include "client/session/SqlQuery.h"
#include "client/statistics/BlockDifference.h"

namespace tovrdb {

struct FileAndKey {
  std::string path;
  std::string key;
};

// An item that only one file holds, with its fields on one line.
struct OnlyBefore {
  std::string summary;
};
struct OnlyAfter {
  std::string summary;
};

struct FieldDiffers {
  std::string field;
  std::string before;
  std::string after;
};

struct CellsDiffer {
  BlockDifference cells;
  std::optional<NumberForm> form;  // of the compared numbers; nothing if bits were compared
};

struct BytesDiffer {
  std::size_t sizeBefore = 0;
  std::size_t sizeAfter = 0;
  std::size_t differing = 0;  // of the bytes that both have
  std::size_t first = 0;      // the first of them
};

// A payload that cannot be compared: why it cannot be read in one file, or in each.
struct Unreadable {
  std::string before;
  std::string after;
};

struct Difference {
  std::string item;
  ItemPlace place;
  std::variant<OnlyBefore, OnlyAfter, FieldDiffers, CellsDiffer, BytesDiffer, Unreadable> what;
};

// Called for a block that both files hold: the cells of both, without bytes if all are equal, and the form of their
// numbers, if it is known.
using VisitBlock = std::function<void(const StoredArea& area, const CellBlock& before, const CellBlock& after,
                                      const std::optional<NumberForm>& form)>;

// The bytes of a payload; none, and the reason, if they cannot be read.
struct StoredPayload {
  Bytes bytes;
  std::string fault;
};

struct Comparing {
  FormOptions form;  // blocks whose cells are not a whole number of such values are compared bit by bit
  std::optional<Tolerance> tolerance;
};

class FileComparison {
 public:
  // Reads what both files hold, but no payloads. Throws Error, which names the file.
  FileComparison(const Access& access, FileAndKey before, FileAndKey after);

  // The areas of the blocks that both files hold in the same shape, in the order of the first file; if the area of one
  // file cannot be read, the other's.
  std::vector<StoredArea> commonAreas() const;

  // Compares everything. Only one file can be open at a time, so payloads are read in turns, some hundred megabytes of
  // the first file and then the same ones of the second. Throws Error if there is a tolerance and the type of the
  // numbers in blocks that differ is unknown.
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
  void comparePayloads(const Pair& pair, Bytes before, Bytes after, const std::optional<NumberForm>& form,
                       const Comparing& how, const VisitBlock& visit);
  template <class What>
  void add(const Item& item, What what) {
    differences_.push_back({item.name, item.place, std::move(what)});
  }

  Access access_;
  FileAndKey before_;
  FileAndKey after_;
  std::vector<Item> itemsBefore_;
  std::vector<Item> itemsAfter_;
  std::vector<Pair> blobs_;
  std::vector<Difference> differences_;
};

}  // namespace tovrdb
