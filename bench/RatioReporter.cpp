#include "RatioReporter.h"

#include <algorithm>
#include <cstdio>

namespace tovrbench {

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool RatioReporter::ReportContext(const Context& /*context*/) { return true; }

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    seconds_[run.run_name.function_name].push_back(run.real_accumulated_time / static_cast<double>(run.iterations));
  }
}

double RatioReporter::share(const std::string& work, const std::string& whole) const {
  const auto part = seconds_.find(work + "/library");
  const auto all = seconds_.find(whole + "/library");
  return part != seconds_.end() && all != seconds_.end() ? median(part->second) / median(all->second) : 0;
}

void RatioReporter::print(std::FILE* out, const std::vector<Bound>& bounds) const {
  std::fprintf(out, "| work | library, ms | floor, ms | ratio | bound |\n|---|---|---|---|---|\n");
  for (const Bound& bound : bounds) {
    const auto library = seconds_.find(bound.work + "/library");
    const auto floor = seconds_.find(bound.work + "/floor");
    if (library == seconds_.end() || floor == seconds_.end()) continue;
    const double ours = median(library->second) * 1e3;
    const double bare = median(floor->second) * 1e3;
    std::fprintf(out, "| %s | %.3f | %.3f | %.3f | %.3f |\n", bound.work.c_str(), ours, bare, ours / bare, bound.ratio);
  }
}

}  // namespace tovrbench
