// Collects the runs of Google Benchmark and prints, for every piece of work, the library's median, its floor's and the
// ratio. A piece of work is two benchmarks named "work/library" and "work/floor".
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace tovrbench {

class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  // The table, in the order given. `bounds`: the ratio each piece of work must reach.
  struct Bound {
    std::string work;
    double ratio;
  };
  void print(std::FILE* out, const std::vector<Bound>& bounds) const;

  // The library's median of one piece of work as a share of another's; 0 when one of them did not run.
  double share(const std::string& work, const std::string& whole) const;

 private:
  std::map<std::string, std::vector<double>> seconds_;  // by benchmark, one per repetition
};

double median(std::vector<double> values);

}  // namespace tovrbench
