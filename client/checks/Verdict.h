// What one check of a database file found.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

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

struct Verdict {
  std::string name;
  std::string detail;  // what was looked at
  Findings faults;     // data is lost, or will be
  Findings warnings;   // unusual, and made on request: nothing is lost, and the library works with it

  bool ok() const { return faults.empty(); }
};

// A list of checks in one word.
enum class Soundness { kSound, kWarning, kFault };
Soundness soundnessOf(const Verdict& verdict);
Soundness soundnessOf(const std::vector<Verdict>& verdicts);  // the worst of them

}  // namespace tovrdb
