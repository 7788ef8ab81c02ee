#include "tool/pictures/HeatmapPanel.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "client/cells/NumberForm.h"
#include "tool/pictures/AxisTicks.h"

namespace tovrdb::tool {
namespace {

constexpr Colour kInk{34, 34, 34};
constexpr Colour kBlack{0, 0, 0};
constexpr Colour kPaper{255, 255, 255};
const Font kTitle{15, true, kInk};
const Font kText{12, false, kInk};
const Font kSmall{11, false, kInk};
const Font kNote{11, false, {90, 90, 90}};
const Font kName{11, false, kPaper};

constexpr double kEdge = 16;  // around everything
constexpr double kGap = 8;    // between things that belong together
constexpr double kTick = 5;
constexpr double kBarWidth = 18;
constexpr double kBarTip = 14;  // the pointed ends, beyond the bar
constexpr double kLeastBar = 170;
constexpr double kMostBar = 420;
constexpr double kLeastWidth = 400;
constexpr double kLineHeight = 16;
constexpr double kDigitHeight = 8;
constexpr double kAreaLine = 1.5;  // thickness

double widest(Canvas& canvas, const std::vector<TickLabel>& labels) {
  double width = 0;
  for (const TickLabel& label : labels) width = std::max(width, canvas.textWidth(label.text, kSmall));
  return width;
}

std::vector<TickLabel> labelsOf(const Ticks& ticks) {
  std::vector<TickLabel> labels;
  for (const double value : ticks.values) labels.push_back({value, tickText(value, ticks.step)});
  return labels;
}

// As many as leave room between their texts; short axes get up to three with less room.
int ticksIn(double length, double room) {
  return std::max({1, static_cast<int>(length / room), std::min(3, static_cast<int>(length * 1.75 / room))});
}

std::vector<TickLabel> columnTicks(Canvas& canvas, const Rect& region, double width) {
  const double room = canvas.textWidth(std::to_string(region.right), kSmall) + 3 * kGap;
  return labelsOf(wholeTicks(region.left, region.right, ticksIn(width, room)));
}

std::vector<TickLabel> rowTicks(const Rect& region, double height) {
  return labelsOf(wholeTicks(region.top, region.bottom, ticksIn(height, 28)));
}

bool hasMissing(const Raster& raster) {
  for (int y = 0; y < raster.height(); y += raster.scale().down.pixelsPerCell) {
    for (int x = 0; x < raster.width(); x += raster.scale().across.pixelsPerCell) {
      if (!raster.has(x, y)) return true;
    }
  }
  return false;
}

// How far from `low` to `high` a value lies, also if their difference overflows.
double shareOf(double value, double low, double high) {
  if (std::isfinite(high - low)) return (value - low) / (high - low);
  return (value / 2 - low / 2) / (high / 2 - low / 2);
}

// The pixels of a picture, row by row.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<bool> set;

  std::size_t at(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  }
};

// Dilation: sets all pixels within `reach` rows and columns of one that is set.
Pixels grown(const Pixels& pixels, int reach) {
  Pixels wide = pixels;
  for (int y = 0; y < pixels.height; ++y) {
    for (int x = 0, until = -1; x < pixels.width + reach; ++x) {  // `until`: the last one within reach
      if (x < pixels.width && pixels.set[pixels.at(x, y)]) until = x + 2 * reach;
      if (x >= reach && x <= until) wide.set[pixels.at(x - reach, y)] = true;
    }
  }
  Pixels all = wide;
  for (int x = 0; x < pixels.width; ++x) {
    for (int y = 0, until = -1; y < pixels.height + reach; ++y) {
      if (y < pixels.height && wide.set[pixels.at(x, y)]) until = y + 2 * reach;
      if (y >= reach && y <= until) all.set[pixels.at(x, y - reach)] = true;
    }
  }
  return all;
}

// Around every group of marked pixels, at a distance, so that a single one is noticed and none is hidden: black inside,
// white outside.
void drawFrames(const Raster& raster, std::vector<Colour>& colours) {
  constexpr int kInner = 3;
  constexpr int kOuter = 5;
  Pixels marked{raster.width(), raster.height(), {}};
  for (int y = 0; y < marked.height; ++y) {
    for (int x = 0; x < marked.width; ++x) marked.set.push_back(raster.isMarked(x, y));
  }
  if (std::find(marked.set.begin(), marked.set.end(), true) == marked.set.end()) return;
  const Pixels inner = grown(marked, kInner), outer = grown(marked, kOuter), edge = grown(marked, kOuter + 1);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    if (edge.set[i] && !inner.set[i]) colours[i] = outer.set[i] ? kBlack : kPaper;
  }
}

}  // namespace

HeatmapPanel::HeatmapPanel(const Raster& raster, const Heatmap& heatmap)
    : raster_(raster), heatmap_(heatmap), colours_(heatmap.palette), missing_(hasMissing(raster)) {
  arrange();
}

double HeatmapPanel::position(double value) const { return shareOf(value, heatmap_.low, heatmap_.high); }

void HeatmapPanel::draw(Canvas& canvas) const {
  canvas.text(canvas.shortened(heatmap_.title, layout_.width - 2 * kEdge, kTitle), kEdge, kEdge + 14, Align::kLeft,
              kTitle);
  drawCells(canvas);
  drawOutlines(canvas);
  drawAxes(canvas);
  drawBar(canvas);
  drawNotes(canvas);
}

void HeatmapPanel::arrange() {
  Canvas measure(1, 1);
  Layout& layout = layout_;
  layout.columns = columnTicks(measure, raster_.region(), raster_.width());
  layout.rows = rowTicks(raster_.region(), raster_.height());
  layout.plot = {std::ceil(kEdge + kLineHeight + widest(measure, layout.rows) + kTick + kGap), kEdge + 34,
                 static_cast<double>(raster_.width()), static_cast<double>(raster_.height())};
  const double barHeight = std::clamp<double>(raster_.height() - 2 * kBarTip, kLeastBar, kMostBar);
  layout.bar = barLabels(heatmap_.low, heatmap_.high, static_cast<int>(barHeight / 40));
  layout.scale = {layout.plot.x + layout.plot.width + 3 * kGap, layout.plot.y + kBarTip, kBarWidth, barHeight};

  double labels = widest(measure, layout.bar);
  if (heatmap_.most > heatmap_.high) labels = std::max(labels, measure.textWidth(mostText(), kSmall));
  if (heatmap_.least < heatmap_.low) labels = std::max(labels, measure.textWidth(leastText(), kSmall));
  layout.barLabelX = layout.scale.x + kBarWidth + kTick + kGap + labels + kLineHeight;
  arrangeNotes(measure);
}

// Below the picture and the bar, whichever ends lower.
void HeatmapPanel::arrangeNotes(Canvas& measure) {
  Layout& layout = layout_;
  layout.notes = heatmap_.notes;
  layout.areaLines = linesOfAreas();
  if (layout.areaLines == AreaLines::kNone) {
    layout.notes.emplace_back("The outlines of the areas are left out: they would hide the cells.");
  }
  double right = layout.barLabelX + kGap;
  for (const std::string& note : layout.notes) right = std::max(right, kEdge + measure.textWidth(note, kNote));

  const double plotEnd = layout.plot.y + layout.plot.height + kTick + 2 * kLineHeight + kGap;
  layout.legendY = std::max(plotEnd, layout.scale.y + layout.scale.height + kBarTip) + kLineHeight;
  layout.notesY = layout.legendY + (missing_ ? kLineHeight + 4 : 0);
  layout.width = static_cast<int>(std::ceil(std::max(right + kEdge, kLeastWidth)));
  layout.height = static_cast<int>(
      std::ceil(layout.notesY + static_cast<double>(layout.notes.size()) * kLineHeight + kEdge - kLineHeight + 4));
}

// Depends on the share of the picture that the lines would cover.
AreaLines HeatmapPanel::linesOfAreas() const {
  constexpr double kThickest = 0.1;
  constexpr double kMost = 0.2;
  double covered = 0;
  for (const Outline& outline : heatmap_.outlines) {
    const Box box = boxOf(outline.rect);
    if (outline.area) covered += 2 * (box.width + box.height) * kAreaLine;
  }
  const double share = covered / (layout_.plot.width * layout_.plot.height);
  return share <= kThickest ? AreaLines::kFull : share <= kMost ? AreaLines::kThin : AreaLines::kNone;
}

Colour HeatmapPanel::colourAt(int x, int y) const {
  if (raster_.has(x, y)) return colours_.at(position(raster_.at(x, y)));
  return (x + y) % 8 < 2 ? kMissingStroke : kMissingGround;
}

void HeatmapPanel::drawCells(Canvas& canvas) const {
  std::vector<Colour> colours;
  colours.reserve(static_cast<std::size_t>(raster_.width()) * static_cast<std::size_t>(raster_.height()));
  for (int y = 0; y < raster_.height(); ++y) {
    for (int x = 0; x < raster_.width(); ++x) colours.push_back(colourAt(x, y));
  }
  drawFrames(raster_, colours);
  canvas.pixels(static_cast<int>(layout_.plot.x), static_cast<int>(layout_.plot.y), raster_.width(), colours);
  const Box& plot = layout_.plot;
  canvas.frame({plot.x - 0.5, plot.y - 0.5, plot.width + 1, plot.height + 1}, kInk, 1);
}

Box HeatmapPanel::boxOf(const Rect& rect) const {
  const double left = layout_.plot.x + raster_.pixelAcross(rect.left);
  const double top = layout_.plot.y + raster_.pixelDown(rect.top);
  const double right = layout_.plot.x + raster_.pixelAcross(std::int64_t{rect.right} + 1);
  const double bottom = layout_.plot.y + raster_.pixelDown(std::int64_t{rect.bottom} + 1);
  return {left, top, right - left, bottom - top};
}

// White on black, visible on every colour. An outline around the whole picture is left out; the title names it.
void HeatmapPanel::drawOutlines(Canvas& canvas) const {
  std::vector<Box> taken;
  canvas.clip(layout_.plot);
  for (const bool areas : {true, false}) {  // screens on top
    for (const Outline& outline : heatmap_.outlines) {
      const Box box = boxOf(outline.rect);
      if (outline.area != areas || holds(outline.rect, raster_.region())) continue;
      if (!areas) {
        canvas.frame(box, kBlack, 3);
        canvas.frame(box, kPaper, 1.2);
      } else if (layout_.areaLines == AreaLines::kFull) {
        canvas.frame(box, kBlack, kAreaLine);
        canvas.frame(box, kPaper, 0.8, true);
      } else if (layout_.areaLines == AreaLines::kThin) {
        canvas.frame(box, kBlack, 0.5);
      }
    }
  }
  for (const Outline& outline : heatmap_.outlines) {
    if (outline.area && layout_.areaLines == AreaLines::kNone) continue;
    if (!holds(outline.rect, raster_.region())) drawName(canvas, outline, boxOf(outline.rect), taken);
  }
  canvas.unclip();
}

// Names of screens are at the top, those of areas at the bottom; a name that would cover another is left out.
void HeatmapPanel::drawName(Canvas& canvas, const Outline& outline, const Box& box, std::vector<Box>& taken) const {
  const double left = std::max(box.x, layout_.plot.x);
  const double top = std::max(box.y, layout_.plot.y);
  const Box seen{left, top, std::min(box.x + box.width, layout_.plot.x + layout_.plot.width) - left,
                 std::min(box.y + box.height, layout_.plot.y + layout_.plot.height) - top};
  const double y = outline.area ? seen.y + seen.height - kLineHeight - 3 : seen.y + 3;
  const std::string name = canvas.shortened(outline.name, seen.width - 14, kName);
  const Box label{seen.x + 3, y, canvas.textWidth(name, kName) + 8, kLineHeight};
  const auto meets = [&](const Box& other) { return other.meets(label); };
  if (name.empty() || !seen.holds(label) || std::any_of(taken.begin(), taken.end(), meets)) return;
  canvas.fill(label, kBlack, 0.6);
  canvas.text(name, label.x + 4, label.y + 12, Align::kLeft, kName);
  taken.push_back(label);
}

void HeatmapPanel::drawAxes(Canvas& canvas) const {
  const Box& plot = layout_.plot;
  const double bottom = plot.y + plot.height;
  for (const TickLabel& tick : layout_.columns) {
    const auto cell = static_cast<std::int64_t>(tick.value);
    const double x = plot.x + (raster_.pixelAcross(cell) + raster_.pixelAcross(cell + 1)) / 2;
    canvas.line({x, bottom}, {x, bottom + kTick}, kInk, 1);
    canvas.text(tick.text, x, bottom + kTick + 13, Align::kMiddle, kSmall);
  }
  for (const TickLabel& tick : layout_.rows) {
    const auto cell = static_cast<std::int64_t>(tick.value);
    const double y = plot.y + (raster_.pixelDown(cell) + raster_.pixelDown(cell + 1)) / 2;
    canvas.line({plot.x - kTick, y}, {plot.x, y}, kInk, 1);
    canvas.text(tick.text, plot.x - kTick - 4, y + kDigitHeight / 2, Align::kRight, kSmall);
  }
  canvas.text("column", plot.x + plot.width / 2, bottom + kTick + 13 + kLineHeight, Align::kMiddle, kText);
  canvas.turnedText("row", kEdge + 10, plot.y + plot.height / 2, kText);
}

void HeatmapPanel::drawBar(Canvas& canvas) const {
  const Box& bar = layout_.scale;
  for (int i = 0; i < static_cast<int>(bar.height); ++i) {
    const double share = (i + 0.5) / std::floor(bar.height);
    canvas.fill({bar.x, bar.y + bar.height - i - 1, bar.width, 1}, colours_.at(share));
  }
  if (heatmap_.most > heatmap_.high) drawTip(canvas, true);
  if (heatmap_.least < heatmap_.low) drawTip(canvas, false);
  canvas.frame({bar.x - 0.5, bar.y - 0.5, bar.width + 1, bar.height + 1}, kInk, 1);
  const double right = bar.x + bar.width;
  for (const TickLabel& tick : layout_.bar) {
    const double y = bar.y + bar.height * (1 - position(tick.value));
    canvas.line({right, y}, {right + kTick, y}, kInk, 1);
    canvas.text(tick.text, right + kTick + 4, y + kDigitHeight / 2, Align::kLeft, kSmall);
  }
  canvas.turnedText(canvas.shortened(heatmap_.label, bar.height + 2 * kBarTip, kText), layout_.barLabelX,
                    bar.y + bar.height / 2, kText);
}

// Cells beyond the range have the colour of its end; the number is their maximum or minimum.
void HeatmapPanel::drawTip(Canvas& canvas, bool upper) const {
  const Box& bar = layout_.scale;
  const double base = upper ? bar.y : bar.y + bar.height;
  const double tip = upper ? base - kBarTip : base + kBarTip;
  canvas.fill({{bar.x, base}, {bar.x + bar.width / 2, tip}, {bar.x + bar.width, base}}, colours_.at(upper ? 1 : 0));
  const std::string text = upper ? mostText() : leastText();
  canvas.text(text, bar.x + bar.width + kTick + 4, upper ? tip + 5 : tip + 3, Align::kLeft, kSmall);
}

void HeatmapPanel::drawNotes(Canvas& canvas) const {
  if (missing_) {
    std::vector<Colour> pattern;
    for (int i = 0; i < 18 * 12; ++i) pattern.push_back((i % 18 + i / 18) % 8 < 2 ? kMissingStroke : kMissingGround);
    const int top = static_cast<int>(layout_.legendY) - 10;
    canvas.pixels(static_cast<int>(kEdge), top, 18, pattern);
    canvas.frame({kEdge - 0.5, top - 0.5, 19, 13}, kInk, 1);
    canvas.text("no cells, or no numbers", kEdge + 18 + kGap, layout_.legendY, Align::kLeft, kNote);
  }
  double y = layout_.notesY;
  for (const std::string& note : layout_.notes) {
    canvas.text(note, kEdge, y, Align::kLeft, kNote);
    y += kLineHeight;
  }
}

}  // namespace tovrdb::tool
