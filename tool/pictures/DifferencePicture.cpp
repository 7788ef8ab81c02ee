#include "tool/pictures/DifferencePicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <set>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"
#include "client/cells/NumberForm.h"
#include "client/reading/NumberForms.h"

namespace tovrdb::tool {
namespace {

constexpr double kPicturedPercent = 99;  // of the differences other than zero

std::int32_t onlyTypeOf(const std::vector<StoredArea>& areas) {
  std::set<std::int32_t> types;
  for (const StoredArea& area : areas) types.insert(area.type);
  if (types.size() == 1) return *types.begin();
  if (types.empty()) throw Error(kInvalid, "the files have no block in common that could be drawn");
  throw Error(kInvalid, "say which blocks to draw with --type: both files have types {}", fmt::join(types, ", "));
}

// The names of the areas' screens, in the order of the areas.
std::vector<std::string> screensOf(const std::vector<StoredArea>& areas) {
  std::vector<std::string> names;
  std::set<std::string> known;
  for (const StoredArea& area : areas) {
    if (known.insert(area.screen).second) names.push_back(area.screen);
  }
  return names;
}

// A form that only one file keeps applies to both; so if the first keeps a form, the second keeps another one.
[[noreturn]] void refuseUnknownNumbers(const StoredArea& area) {
  const std::string subject = fmt::format("{}, type {}", toText(area), area.type);
  if (!keptForm(area)) throw Error(kInvalid, "{}: no file tells the type of its numbers: say it with --dtype", subject);
  throw Error(kInvalid,
              "{}: the files keep different types, scales or units of its numbers: say how to read both with "
              "--dtype, --scale and --unit",
              subject);
}

// Keeps a finite difference finite.
double apart(double before, double after) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  const double difference = after - before;
  return std::isfinite(before) && std::isfinite(after) ? std::clamp(difference, -kLargest, kLargest) : difference;
}

}  // namespace

DifferencePicture::DifferencePicture(const DifferenceSubject& subject, const Comparing& how,
                                     const std::vector<StoredArea>& areas)
    : subject_(subject), how_(how), type_(subject.type ? *subject.type : onlyTypeOf(areas)) {
  std::vector<StoredArea> drawn;
  std::copy_if(areas.begin(), areas.end(), std::back_inserter(drawn),
               [this](const StoredArea& area) { return isDrawn(area); });
  if (drawn.empty()) throw Error(kInvalid, "the files have no block of type {} in common to draw", type_);
  apart_ = screensShareCells(drawn);
  const auto screens = apart_ ? screensOf(drawn) : std::vector<std::string>{""};
  plan_ = {screens.size(), subject.sheet ? componentsOf(drawn.front()) : 1};
  requirePanels(plan_);
  for (const std::string& screen : screens) {
    std::vector<StoredArea> own;
    std::copy_if(drawn.begin(), drawn.end(), std::back_inserter(own),
                 [&](const StoredArea& area) { return !apart_ || area.screen == screen; });
    addPanels(screen, own);
  }
}

bool DifferencePicture::isDrawn(const StoredArea& area) const {
  return area.type == type_ && (subject_.screen.empty() || area.screen == subject_.screen);
}

std::size_t DifferencePicture::componentsOf(const StoredArea& area) const {
  const auto form = chosenForm(how_.form, keptForm(area));
  if (!form) refuseUnknownNumbers(area);
  return valuesPerCell(area.cellBytes, form->dtype);
}

void DifferencePicture::addPanels(const std::string& screen, const std::vector<StoredArea>& areas) {
  Rect region = areas.front().rect;
  std::vector<Outline> outlines;
  std::set<std::string> named;  // each screen once
  for (const StoredArea& area : areas) {
    region = united(region, area.rect);
    outlines.push_back({area.rect, named.insert(area.screen).second ? area.screen : "", true});
  }
  for (std::size_t i = 0; i < plan_.components; ++i) {
    const std::size_t component = subject_.sheet ? i : subject_.component;
    panels_.push_back({screen, component, GatheredNumbers(region, Merge::kFarthestFromZero, plan_.limits()), {}});
    panels_.back().heatmap.outlines = outlines;
  }
  differing_.resize(panels_.size());
  compositions_.emplace(screen, Composition(region));
}

void DifferencePicture::add(const StoredArea& area, const CellBlock& before, const CellBlock& after,
                            const std::optional<NumberForm>& form) {
  if (!isDrawn(area)) return;
  if (before.bytes != nullptr && !form) refuseUnknownNumbers(area);
  if (form) form_ = *form;
  const std::string& screen = apart_ ? area.screen : panels_.front().screen;
  for (const PanelNumbers& panel : panels_) {
    if (form && panel.screen == screen) requireComponent(area.cellBytes, form->dtype, panel.component);
  }
  const auto composition = compositions_.find(screen);
  if (composition == compositions_.end()) return;
  const auto addRun = [&](const CellRun& run) {
    for (std::size_t i = 0; i < panels_.size(); ++i) {
      if (panels_[i].screen != screen) continue;
      std::vector<double> row(static_cast<std::size_t>(run.right - run.left) + 1);
      if (before.bytes != nullptr) addRow(panels_[i], differing_[i], before, after, *form, run, row.data());
      panels_[i].numbers.add(run, row);
    }
  };
  composition->second.add(area.rect, [&](const Rect&) { return addRun; });
}

void DifferencePicture::addRow(PanelNumbers& panel, std::int64_t& differing, const CellBlock& before,
                               const CellBlock& after, const NumberForm& form, const CellRun& run, double* row) const {
  const std::size_t count = static_cast<std::size_t>(run.right - run.left) + 1;
  std::vector<double> early(count), late(count);
  const Rect part{run.left, run.y, run.right, run.y};
  readRow(before, form, panel.component, part, run.y, early.data());
  readRow(after, form, panel.component, part, run.y, late.data());
  for (std::size_t i = 0; i < count; ++i) {
    if (!differ(early[i], late[i], how_.tolerance.value_or(Tolerance{}))) continue;
    row[i] = apart(early[i], late[i]);
    panel.numbers.mark(run.left + static_cast<std::int32_t>(i), run.y);
    ++differing;
  }
}

std::string DifferencePicture::countText(const PanelNumbers& panel, std::int64_t differing) const {
  std::int64_t cells = 0;
  for (const Outline& outline : panel.heatmap.outlines) cells += columnsOf(outline.rect) * rowsOf(outline.rect);
  std::string beyond;
  if (how_.tolerance && how_.tolerance->absolute > 0) beyond = " by more than " + numberText(how_.tolerance->absolute);
  if (how_.tolerance && how_.tolerance->relative > 0) {
    beyond = fmt::format(" by more than {}%", numberText(how_.tolerance->relative * 100));
  }
  return fmt::format("{} of {} cells differ{}{}", differing, cells, beyond,
                     differing > 0 ? "; black frames show where." : ".");
}

std::vector<unsigned char> DifferencePicture::png(const std::string& files) {
  setColours(panels_, [](const std::vector<double>& values) { return balancedRange(values, kPicturedPercent); });
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    Heatmap& heatmap = panels_[i].heatmap;
    heatmap.palette = Palette::kDiverging;
    heatmap.label = form_.unit.empty() ? "difference" : form_.unit;
    heatmap.textOf = [form = form_](double number) { return form.text(number); };
    heatmap.notes = {countText(panels_[i], differing_[i])};
  }
  const std::string title =
      fmt::format("{}: type {}, {}", files, type_,
                  subject_.sheet ? "all components" : fmt::format("component {}", subject_.component));
  const std::string colours =
      fmt::format("Colours span the percentile {} of differences other than 0.", numberText(kPicturedPercent));
  return drawSheet(sheetOf(plan_, panels_, Merge::kFarthestFromZero, title, {colours}));
}

}  // namespace tovrdb::tool
