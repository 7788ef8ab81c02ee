#include "client/checks/FileDifference.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "client/base/Error.h"
#include "client/contents/StoredBlob.h"
#include "client/reading/NumberForms.h"
#include "client/session/Damage.h"

namespace tovrdb {
namespace {

constexpr std::int64_t kBatchBytes = std::int64_t{256} << 20;

// Errors of `action` name the file, since two are compared.
template <class Action>
auto naming(const std::string& file, Action action) {
  try {
    return action();
  } catch (const Error& error) {
    throw error.about(file);
  }
}

StoredPayload storedPayload(Session& session, const Item& item) {
  if (item.area && !item.area->fault.empty()) return {{}, item.area->fault};
  try {
    return {queryPayload(session, item.blob->table, item.blob->id).value_or(Bytes()), {}};
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
    return {{}, error.what()};
  }
}

// Decrypts a payload.
StoredPayload payloadOf(Session& session, const StoredPayload& stored) {
  if (!stored.fault.empty()) return stored;
  try {
    return {decipherBlob(session.host().encryption(), stored.bytes), {}};
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    return {{}, error.what()};
  }
}

bool isFaulty(const Item& item) { return item.area && !item.area->fault.empty(); }

std::string summary(const Item& item) {
  if (isFaulty(item)) return "damaged: " + item.area->fault;
  std::vector<std::string> texts;
  for (const auto& [field, value] : item.fields) {
    if (!value.empty()) texts.push_back(field + " " + value);
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

BytesDiffer compareBytes(const Bytes& before, const Bytes& after) {
  BytesDiffer result{before.size(), after.size(), 0, 0};
  for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
    if (before[i] == after[i]) continue;
    if (result.differing++ == 0) result.first = i;
  }
  return result;
}

bool isBlockOf(const Item& item, const Bytes& bytes) {
  return item.area && fills(bytes.size(), item.area->rect, item.area->cellBytes);
}

bool sameShape(const Item& before, const Item& after) {
  return before.area && after.area && before.area->cellBytes == after.area->cellBytes;
}

// The form of both blocks; nothing if it is unknown, if the two differ, or if it does not divide the cells.
std::optional<NumberForm> commonForm(const StoredArea& before, const StoredArea& after, const FormOptions& options) {
  auto form = chosenForm(options, keptForm(before));
  const auto other = chosenForm(options, keptForm(after));
  if (form && other && !(*form == *other)) return std::nullopt;
  if (!form) form = other;
  if (form && static_cast<std::size_t>(before.cellBytes) % traitsOf(form->dtype).bytes != 0) return std::nullopt;
  return form;
}

[[noreturn]] void refuseUnknownNumbers(const Item& before, const Item& after) {
  const auto first = keptForm(*before.area);
  const auto second = keptForm(*after.area);
  if (!first || !second) {
    throw Error(kInvalid, "{}: neither file tells the type of its numbers", before.name)
        .suggest(Remedy::kGiveNumberType);
  }
  throw Error(kInvalid, "{}: the first file keeps its numbers as {}, the second as {}", before.name, toText(*first),
              toText(*second))
      .suggest(Remedy::kGiveNumberForm);
}

}  // namespace

FileComparison::FileComparison(const Access& access, FileAndKey before, FileAndKey after)
    : access_(access), before_(std::move(before)), after_(std::move(after)) {
  itemsBefore_ = inventory(before_);
  itemsAfter_ = inventory(after_);
  pairItems();
}

std::vector<Item> FileComparison::inventory(const FileAndKey& file) const {
  return naming(file.path, [&] {
    Session session = Session::openExisting(access_, file.path, file.key);
    std::vector<Item> items = takeInventory(session);
    session.close();
    return items;
  });
}

// Finds the items that only one file holds, and the fields that differ.
void FileComparison::pairItems() {
  std::map<std::string, const Item*> after;
  for (const Item& item : itemsAfter_) after[item.name] = &item;
  for (const Item& item : itemsBefore_) {
    const auto found = after.find(item.name);
    if (found == after.end()) {
      add(item, OnlyBefore{summary(item)});
      continue;
    }
    const Item& other = *found->second;
    after.erase(found);
    const bool faulty = isFaulty(item) || isFaulty(other);
    for (std::size_t i = 0; i < item.fields.size() && !faulty; ++i) {
      const auto& [field, text] = item.fields[i];
      if (text != other.fields[i].second) add(item, FieldDiffers{field, text, other.fields[i].second});
    }
    if (item.blob) blobs_.push_back({&item, &other});
  }
  for (const Item& item : itemsAfter_) {
    if (after.count(item.name) != 0) add(item, OnlyAfter{summary(item)});
  }
}

std::vector<StoredArea> FileComparison::commonAreas() const {
  std::vector<StoredArea> areas;
  for (const Pair& pair : blobs_) {
    if (!pair.before->area) continue;
    const bool faulty = isFaulty(*pair.before);
    if (faulty && isFaulty(*pair.after)) continue;
    if (faulty || isFaulty(*pair.after)) {
      areas.push_back(faulty ? *pair.after->area : *pair.before->area);
    } else if (sameShape(*pair.before, *pair.after)) {
      areas.push_back(*pair.before->area);
    }
  }
  return areas;
}

std::vector<Difference> FileComparison::compare(const Comparing& how, const VisitBlock& visit) {
  std::size_t from = 0;
  while (from < blobs_.size()) {
    std::size_t to = from;
    for (std::int64_t bytes = 0; to < blobs_.size() && (to == from || bytes < kBatchBytes); ++to) {
      bytes += blobs_[to].before->blob->bytes;
    }
    compareBatch(from, to, how, visit);
    from = to;
  }
  return std::move(differences_);
}

void FileComparison::compareBatch(std::size_t from, std::size_t to, const Comparing& how, const VisitBlock& visit) {
  std::vector<StoredPayload> stored;
  naming(before_.path, [&] {
    Session session = Session::openExisting(access_, before_.path, before_.key);
    for (std::size_t i = from; i < to; ++i) stored.push_back(storedPayload(session, *blobs_[i].before));
    session.close();
  });
  Session session = naming(after_.path, [&] { return Session::openExisting(access_, after_.path, after_.key); });
  for (std::size_t i = from; i < to; ++i) {
    compareBlobs(session, blobs_[i], stored[i - from], how, visit);
    stored[i - from] = {};
  }
  naming(after_.path, [&] { session.close(); });
}

// Every file encrypts equal payloads to equal bytes, so these need not be decrypted.
void FileComparison::compareBlobs(Session& session, const Pair& pair, const StoredPayload& storedBefore,
                                  const Comparing& how, const VisitBlock& visit) {
  const StoredPayload storedAfter = naming(after_.path, [&] { return storedPayload(session, *pair.after); });
  const bool shaped = sameShape(*pair.before, *pair.after);
  const auto form = shaped ? commonForm(*pair.before->area, *pair.after->area, how.form) : std::nullopt;
  const bool readable = storedBefore.fault.empty() && storedAfter.fault.empty();
  if (readable && storedBefore.bytes == storedAfter.bytes) {
    if (!shaped) return;
    const CellBlock equal{pair.before->area->rect, pair.before->area->cellBytes, nullptr};
    return visit(*pair.before->area, equal, equal, form);
  }
  StoredPayload before = payloadOf(session, storedBefore), after = payloadOf(session, storedAfter);
  if (!before.fault.empty() || !after.fault.empty()) return add(*pair.before, Unreadable{before.fault, after.fault});
  comparePayloads(pair, std::move(before.bytes), std::move(after.bytes), form, how, visit);
}

void FileComparison::comparePayloads(const Pair& pair, Bytes before, Bytes after, const std::optional<NumberForm>& form,
                                     const Comparing& how, const VisitBlock& visit) {
  const bool shaped = sameShape(*pair.before, *pair.after);
  if (!shaped || !isBlockOf(*pair.before, before) || !isBlockOf(*pair.after, after)) {
    const BytesDiffer bytes = compareBytes(before, after);
    const bool same = bytes.differing == 0 && bytes.sizeBefore == bytes.sizeAfter;  // only the cipher's padding differs
    return same ? void() : add(*pair.before, bytes);
  }
  const StoredArea& area = *pair.before->area;
  const CellBlock cellsBefore = blockOf(area.rect, area.cellBytes, std::move(before));
  const CellBlock cellsAfter = blockOf(area.rect, area.cellBytes, std::move(after));
  if (how.tolerance && !form && !how.form.dtype) refuseUnknownNumbers(*pair.before, *pair.after);
  visit(area, cellsBefore, cellsAfter, form);
  const BlockDifference cells = compareBlocks(cellsBefore, cellsAfter, form, form ? how.tolerance : std::nullopt);
  if (cells.differing != 0) add(*pair.before, CellsDiffer{cells, form});
}

}  // namespace tovrdb
