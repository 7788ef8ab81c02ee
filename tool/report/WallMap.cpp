#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <set>

#include "client/cells/CoveredCells.h"
#include "tool/report/ReportPage.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kMostAreas = 2000;

bool overlap(const std::vector<ScreenFacts>& screens) {
  std::vector<Rect> rects;
  for (const ScreenFacts& each : screens) rects.push_back(each.screen.rect);
  return overlapsAmong(rects, 0).pairs > 0;
}

class Map {
 public:
  explicit Map(const ReportContent& content) : content_(content) {
    for (const ScreenFacts& each : content.facts.screens) {
      if (isSound(each.screen.rect)) screens_.push_back(each);
    }
    apart_ = content.facts.type == 1 && overlap(screens_);
    for (std::size_t i = 0; i < content.sets.size(); ++i) firstSet_.emplace(content.sets[i].set.screenId, i);
  }

  std::string html() {
    if (screens_.empty()) return "<p>There is no screen to draw.</p>\n";
    arrange();
    // A line of text, in cells, if the map fills its place in the page.
    const double line = std::max((right_ - left_) / 70, (bottom_ - top_) / 22);
    std::string text = fmt::format(
        "<svg class=\"map\" id=\"map\" role=\"group\" aria-label=\"Map of the screens, to scale\" "
        "viewBox=\"{} {} {} {}\" font-size=\"{}\">\n",
        left_ - line, top_ - 2 * line, right_ - left_ + 2 * line, bottom_ - top_ + 3 * line, line);
    for (const ScreenFacts& each : screens_) text += screen(each.screen, line);
    if (content_.areas.size() <= kMostAreas) {
      for (std::size_t set = 0; set < content_.sets.size(); ++set) text += areasOf(set);
      text += areasOfNoSet();
    }
    text += "</svg>\n";
    if (content_.areas.size() <= kMostAreas) return text;
    return text + fmt::format("<p>The map leaves out the areas: there are {} of them.</p>\n", content_.areas.size());
  }

 private:
  void arrange() {
    double next = 0;
    for (const ScreenFacts& each : screens_) {
      const Rect& rect = each.screen.rect;
      const auto width = static_cast<double>(columnsOf(rect));
      if (apart_) {
        shift_[each.screen.id] = next - rect.left;
        next += width * 1.05 + 1;
      }
      const double left = rect.left + shift_[each.screen.id];
      const bool first = &each == &screens_.front();
      left_ = first ? left : std::min(left_, left);
      top_ = first ? rect.top : std::min<double>(top_, rect.top);
      right_ = first ? left + width : std::max(right_, left + width);
      bottom_ = std::max(first ? 1.0 : bottom_, static_cast<double>(rect.bottom) + 1);
    }
  }

  static std::string box(const Rect& rect, double shift) {
    return fmt::format("x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"", rect.left + shift, rect.top, columnsOf(rect),
                       rowsOf(rect));
  }

  std::string screen(const StoredScreen& screen, double line) {
    const double shift = shift_[screen.id];
    const std::string name = htmlText(screen.name);
    const std::string drawn =
        fmt::format("<rect class=\"screen\" {0}><title>{1}, {2}</title></rect><text x=\"{3}\" y=\"{4}\">{1}</text>",
                    box(screen.rect, shift), name, htmlText(toText(screen.rect)), screen.rect.left + shift,
                    screen.rect.top - line / 3);
    const auto set = firstSet_.find(screen.id);
    if (set == firstSet_.end()) return "<g>" + drawn + "</g>\n";
    return fmt::format("<a href=\"#set-{}\" aria-label=\"screen {}\">{}</a>\n", set->second, name, drawn);
  }

  std::string areasOf(std::size_t index) {
    const CellSet& set = content_.sets[index].set;
    if (firstSet_.at(set.screenId) != index) return "";  // areas of other types cover the same cells
    std::string text;
    for (const std::size_t at : set.areas) {
      const ReportArea& each = content_.areas[at];
      text += fmt::format(
          "<rect class=\"{}\" {} tabindex=\"0\" role=\"button\" data-set=\"{}\" data-area=\"{}\" "
          "aria-label=\"area {}, {}\"/>\n",
          each.fault.empty() ? "area" : "area bad", box(each.area.rect, shift_[set.screenId]), index, each.area.id,
          each.area.id, toText(each.area.rect));
    }
    return text;
  }

  // Areas without a picture link to the reason.
  std::string areasOfNoSet() {
    std::set<std::size_t> shown;
    for (const ReportSet& each : content_.sets) shown.insert(each.set.areas.begin(), each.set.areas.end());
    std::string text;
    for (std::size_t i = 0; i < content_.areas.size(); ++i) {
      const StoredArea& area = content_.areas[i].area;
      if (shown.count(i) != 0 || !isSound(area.rect)) continue;
      text += fmt::format(
          "<a href=\"#faults\" aria-label=\"area {0}, {1}: not shown\"><rect class=\"area bad\" {2}>"
          "<title>area {0}, {1}: not shown</title></rect></a>\n",
          area.id, toText(area.rect), box(area.rect, shift_[area.screenId]));
    }
    return text;
  }

  const ReportContent& content_;
  std::vector<ScreenFacts> screens_;
  bool apart_ = false;
  std::map<std::int64_t, std::size_t> firstSet_;  // by screen
  std::map<std::int64_t, double> shift_;          // by screen
  double left_ = 0;
  double top_ = 0;
  double right_ = 1;
  double bottom_ = 1;
};

}  // namespace

std::string mapHtml(const ReportContent& content) { return Map(content).html(); }

}  // namespace tovrdb::tool
