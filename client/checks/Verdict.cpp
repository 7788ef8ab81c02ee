#include "client/checks/Verdict.h"

#include <algorithm>
#include <utility>

#include "client/base/Text.h"

namespace tovrdb {

void Findings::add(std::string text) {
  ++count_;
  if (kept_.size() < kMostKept) kept_.push_back(std::move(text));
}

std::vector<std::string> Findings::first(std::size_t most) const {
  const std::size_t shown = std::min(most, kept_.size());
  std::vector<std::string> lines(kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(shown));
  if (count_ > shown) lines.push_back("and " + grouped(static_cast<std::int64_t>(count_ - shown)) + " more");
  return lines;
}

Soundness soundnessOf(const Verdict& verdict) {
  if (!verdict.faults.empty()) return Soundness::kFault;
  return verdict.warnings.empty() ? Soundness::kSound : Soundness::kWarning;
}

Soundness soundnessOf(const std::vector<Verdict>& verdicts) {
  Soundness worst = Soundness::kSound;
  for (const Verdict& verdict : verdicts) worst = std::max(worst, soundnessOf(verdict));
  return worst;
}

}  // namespace tovrdb
