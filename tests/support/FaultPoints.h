// The points at which something below an operation can fail, counted as they are passed: the n-th fails, once or from
// there on.
#pragma once

#include <string>
#include <vector>

namespace tovrtest {

enum class Failing { kOnce, kFromThereOn };

class FaultPoints {
 public:
  // Counts from here on; point 0 never comes.
  void arm(int point, Failing how = Failing::kOnce) {
    point_ = point;
    how_ = how;
    passed = 0;
    met = false;
    failures.clear();
  }
  void disarm() { point_ = 0; }

  // Passes a point that cannot be told apart from the others. Allocates nothing.
  bool fails() noexcept {
    ++passed;
    const bool failing = point_ > 0 && (passed == point_ || (how_ == Failing::kFromThereOn && passed > point_));
    met = met || failing;
    return failing;
  }

  // Passes a point that has a name, which is remembered where it fails.
  bool fails(const std::string& name) {
    const bool failing = name != exempt && fails();
    if (failing) failures.push_back(name);
    return failing;
  }

  std::string exempt;  // a name of points that never fail
  int passed = 0;
  bool met = false;  // whether any has failed
  std::vector<std::string> failures;

 private:
  int point_ = 0;
  Failing how_ = Failing::kOnce;
};

}  // namespace tovrtest
