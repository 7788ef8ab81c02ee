// The picture of what differs between the blocks of two files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "client/checks/FileDifference.h"
#include "client/reading/Mosaic.h"
#include "tool/pictures/SheetLayout.h"

namespace tovrdb::tool {

// What to draw.
struct DifferenceSubject {
  std::optional<std::int32_t> type;  // may be left out if both files have only one
  std::string screen;                // empty: all
  std::size_t component = 0;
  bool sheet = false;  // all components instead
};

class DifferencePicture {
 public:
  // `areas`: of the blocks that both files hold. Throws Error if they leave nothing to draw, or if the choice is
  // ambiguous.
  DifferencePicture(const DifferenceSubject& subject, const Comparing& how, const std::vector<StoredArea>& areas);

  // As FileComparison visits them. What counts as equal is drawn as equal. Throws Error if the form of the numbers is
  // unknown.
  void add(const StoredArea& area, const CellBlock& before, const CellBlock& after,
           const std::optional<NumberForm>& form);

  std::vector<unsigned char> png(const std::string& files);

 private:
  bool isDrawn(const StoredArea& area) const;
  std::size_t componentsOf(const StoredArea& area) const;
  void addPanels(const std::string& screen, const std::vector<StoredArea>& areas);
  void addRow(PanelNumbers& panel, std::int64_t& differing, const CellBlock& before, const CellBlock& after,
              const NumberForm& form, const CellRun& run, double* row) const;
  std::string countText(const PanelNumbers& panel, std::int64_t differing) const;

  DifferenceSubject subject_;
  Comparing how_;
  std::int32_t type_;
  bool apart_ = false;  // screens overlap: each has panels of its own
  PanelPlan plan_;
  std::vector<PanelNumbers> panels_;
  std::map<std::string, Composition> compositions_;  // by screen, as the panels
  std::vector<std::int64_t> differing_;              // cells, of each panel
  NumberForm form_{NumberType::kFloat64, {}, {}};    // until a block tells another
};

}  // namespace tovrdb::tool
