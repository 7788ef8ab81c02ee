#include "tests/faults/VolatileDisk.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tovrtest {
namespace {

constexpr std::size_t kSector = 512;  // what a disk writes whole or not at all, at best

enum class Fate { kKept, kLost, kTorn };

Fate anyFate(std::mt19937& random) {
  const auto chance = random() % 8;
  return chance == 0 ? Fate::kTorn : chance % 2 == 0 ? Fate::kKept : Fate::kLost;
}

// What becomes of each of a number of steps in one power cut.
std::vector<Fate> fates(std::size_t steps, std::mt19937& random) {
  const auto way = random() % 4;
  const std::size_t one = random() % steps;
  std::vector<Fate> all(steps, way == 1 ? Fate::kKept : Fate::kLost);
  if (way == 0) std::fill_n(all.begin(), one, Fate::kKept);
  if (way == 3) std::generate(all.begin(), all.end(), [&] { return anyFate(random); });
  all[one] = way == 0 ? Fate::kTorn : anyFate(random);
  return all;
}

}  // namespace

VolatileDisk::VolatileDisk(const DiskImage& image) {
  for (const auto& [name, bytes] : image) {
    written_.names[name] = files_;
    written_.files[files_++] = bytes;
  }
  synced_ = written_;
}

std::optional<int> VolatileDisk::find(const std::string& name) const {
  const auto found = written_.names.find(name);
  return found != written_.names.end() ? std::optional<int>(found->second) : std::nullopt;
}

int VolatileDisk::create(const std::string& name) {
  take({Kind::kCreate, files_, name, 0, {}});
  return files_++;
}

void VolatileDisk::remove(const std::string& name) { take({Kind::kRemove, 0, name, 0, {}}); }

void VolatileDisk::write(int file, std::size_t at, Bytes bytes) {
  take({Kind::kWrite, file, "", at, std::move(bytes)});
}

void VolatileDisk::truncate(int file, std::size_t size) { take({Kind::kTruncate, file, "", size, {}}); }

void VolatileDisk::sync(int file) {
  settle([file](const Step& step) {
    return (step.kind == Kind::kWrite || step.kind == Kind::kTruncate) && step.file == file;
  });
}

void VolatileDisk::syncNames() {
  settle([](const Step& step) { return step.kind == Kind::kCreate || step.kind == Kind::kRemove; });
}

void VolatileDisk::addCuts(int attempts, std::mt19937& random, std::set<DiskImage>& images) const {
  images.insert(written());
  images.insert(imageOf(synced_));
  for (int i = 0; i < attempts && !unsynced_.empty(); ++i) images.insert(cut(random));
}

void VolatileDisk::addEnds(std::set<DiskImage>& images) const {
  State state = synced_;
  for (const Step& step : unsynced_) {
    images.insert(imageOf(state));
    apply(step, state);
  }
}

DiskImage VolatileDisk::imageOf(const State& state) {
  DiskImage image;
  for (const auto& [name, file] : state.names) {
    const auto bytes = state.files.find(file);
    image[name] = bytes != state.files.end() ? bytes->second : Bytes();
  }
  return image;
}

void VolatileDisk::apply(const Step& step, State& state) {
  Bytes& bytes = state.files[step.file];
  switch (step.kind) {
    case Kind::kCreate:
      state.names[step.name] = step.file;
      break;
    case Kind::kRemove:
      state.names.erase(step.name);
      break;
    case Kind::kTruncate:
      bytes.resize(step.at);
      break;
    case Kind::kWrite:
      bytes.resize(std::max(bytes.size(), step.at + step.bytes.size()));
      std::copy(step.bytes.begin(), step.bytes.end(), bytes.begin() + static_cast<std::ptrdiff_t>(step.at));
      break;
  }
}

void VolatileDisk::applyTorn(const Step& step, State& state, std::mt19937& random) {
  if (step.kind != Kind::kWrite) {
    if (random() % 2 == 0) apply(step, state);
    return;
  }
  for (std::size_t begin = 0, end = 0; begin < step.bytes.size(); begin = end) {
    end = std::min(step.bytes.size(), begin + kSector - (step.at + begin) % kSector);
    const auto at = [&](std::size_t i) { return step.bytes.begin() + static_cast<std::ptrdiff_t>(i); };
    Step sector{step.kind, step.file, "", step.at + begin, Bytes(at(begin), at(end))};
    const auto chance = random() % 3;
    const auto anything = [&] { return static_cast<unsigned char>(random()); };
    if (chance == 0) std::generate(sector.bytes.begin(), sector.bytes.end(), anything);
    if (chance != 1) apply(sector, state);
  }
}

void VolatileDisk::take(Step step) {
  apply(step, written_);
  unsynced_.push_back(std::move(step));
}

template <class Chosen>
void VolatileDisk::settle(Chosen chosen) {
  for (const Step& step : unsynced_) {
    if (chosen(step)) apply(step, synced_);
  }
  unsynced_.erase(std::remove_if(unsynced_.begin(), unsynced_.end(), chosen), unsynced_.end());
}

DiskImage VolatileDisk::cut(std::mt19937& random) const {
  State state = synced_;
  const std::vector<Fate> decided = fates(unsynced_.size(), random);
  for (std::size_t i = 0; i < unsynced_.size(); ++i) {
    if (decided[i] == Fate::kKept) apply(unsynced_[i], state);
    if (decided[i] == Fate::kTorn) applyTorn(unsynced_[i], state, random);
  }
  return imageOf(state);
}

}  // namespace tovrtest
