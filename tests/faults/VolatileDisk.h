// A disk in memory that keeps apart what programs have written and what has been synced, and makes the images that a
// power cut may leave of it. A value: a copy is the whole disk, with all that is still on its way.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace tovrtest {

// Contents by file name.
using DiskImage = std::map<std::string, std::vector<unsigned char>>;

class VolatileDisk {
 public:
  using Bytes = std::vector<unsigned char>;

  VolatileDisk() = default;
  explicit VolatileDisk(const DiskImage& image);  // all of it synced

  // Files have numbers: a name that was removed and is made again leads to another file.
  std::optional<int> find(const std::string& name) const;
  int create(const std::string& name);
  void remove(const std::string& name);
  const Bytes& content(int file) const { return written_.files.at(file); }
  void write(int file, std::size_t at, Bytes bytes);
  void truncate(int file, std::size_t size);

  void sync(int file);  // its bytes and its size, not its name
  void syncNames();     // what was made and removed

  // What programs see: the image where nothing is cut.
  DiskImage written() const { return imageOf(written_); }

  // Adds images that a power cut may leave now. What was not synced is there or not, each step and each sector of a
  // write for itself, and a sector may hold anything: first all and nothing of it, then `attempts` by chance, half of
  // them in the order of the writes, or with a single step lost or kept.
  void addCuts(int attempts, std::mt19937& random, std::set<DiskImage>& images) const;

  // Adds the images that a program leaves which ends at any step since the last sync: the disk gets what was written.
  void addEnds(std::set<DiskImage>& images) const;

 private:
  struct State {
    std::map<std::string, int> names;
    std::map<int, Bytes> files;
  };
  enum class Kind { kCreate, kRemove, kWrite, kTruncate };
  struct Step {
    Kind kind;
    int file;
    std::string name;
    std::size_t at;  // the offset of the bytes, or the new size
    Bytes bytes;
  };

  static DiskImage imageOf(const State& state);
  static void apply(const Step& step, State& state);
  static void applyTorn(const Step& step, State& state, std::mt19937& random);
  void take(Step step);
  template <class Chosen>
  void settle(Chosen chosen);
  DiskImage cut(std::mt19937& random) const;

  State written_;
  State synced_;
  std::vector<Step> unsynced_;
  int files_ = 0;
};

}  // namespace tovrtest
