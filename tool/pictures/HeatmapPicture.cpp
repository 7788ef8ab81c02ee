#include "tool/pictures/HeatmapPicture.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "tool/cells/NumberText.h"
#include "tool/pictures/AxisTicks.h"
#include "tool/pictures/Canvas.h"

namespace tovrtool {
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
constexpr double kLeastOutlined = 16;  // smaller areas would vanish under their outlines

// Where everything lies.
struct Layout {
  Ticks columns;
  Ticks rows;
  Ticks bar;
  Box plot;
  Box scale;  // the bar without its tips
  double barLabelX = 0;
  double legendY = 0;
  double notesY = 0;
  int width = 0;
  int height = 0;
};

double widest(Canvas& canvas, const Ticks& ticks) {
  double width = 0;
  for (const double value : ticks.values)
    width = std::max(width, canvas.textWidth(tickText(value, ticks.step), kSmall));
  return width;
}

// As many as leave room between their texts; short axes get up to three that stand closer.
int ticksIn(double length, double room) {
  return std::max({1, static_cast<int>(length / room), std::min(3, static_cast<int>(length * 1.75 / room))});
}

Ticks columnTicks(Canvas& canvas, const Rect& region, double width) {
  const double room = canvas.textWidth(std::to_string(region.right), kSmall) + 3 * kGap;
  return wholeTicks(region.left, region.right, ticksIn(width, room));
}

Ticks rowTicks(const Rect& region, double height) { return wholeTicks(region.top, region.bottom, ticksIn(height, 28)); }

bool hasMissing(const Raster& raster) {
  for (int y = 0; y < raster.height(); y += raster.scale().down.pixelsPerCell) {
    for (int x = 0; x < raster.width(); x += raster.scale().across.pixelsPerCell) {
      if (!raster.has(x, y)) return true;
    }
  }
  return false;
}

// How far from `low` to `high` a value lies; also of ranges that are wider than the largest number.
double shareOf(double value, double low, double high) {
  if (std::isfinite(high - low)) return (value - low) / (high - low);
  return (value / 2 - low / 2) / (high / 2 - low / 2);
}

class Picture {
 public:
  Picture(const Raster& raster, const Heatmap& heatmap)
      : raster_(raster),
        heatmap_(heatmap),
        colours_(heatmap.palette),
        missing_(hasMissing(raster)),
        layout_(arrange()),
        canvas_(layout_.width, layout_.height) {}

  std::vector<unsigned char> draw() {
    canvas_.text(canvas_.shortened(heatmap_.title, layout_.width - 2 * kEdge, kTitle), kEdge, kEdge + 14, Align::kLeft,
                 kTitle);
    drawCells();
    drawOutlines();
    drawAxes();
    drawBar();
    drawNotes();
    return canvas_.png();
  }

 private:
  Layout arrange() const;
  double position(double value) const { return shareOf(value, heatmap_.low, heatmap_.high); }
  std::string mostText() const { return "max " + heatmap_.textOf(heatmap_.most); }
  std::string leastText() const { return "min " + heatmap_.textOf(heatmap_.least); }
  Colour colourAt(int x, int y) const;
  Box boxOf(const Rect& rect) const;
  void drawCells();
  void drawOutlines();
  void drawName(const Outline& outline, const Box& box, std::vector<Box>& taken);
  void drawAxes();
  void drawBar();
  void drawTip(bool upper);
  void drawNotes();

  const Raster& raster_;
  const Heatmap& heatmap_;
  ColourMap colours_;
  bool missing_;
  Layout layout_;
  Canvas canvas_;
};

Layout Picture::arrange() const {
  Canvas measure(1, 1);
  Layout layout;
  layout.columns = columnTicks(measure, raster_.region(), raster_.width());
  layout.rows = rowTicks(raster_.region(), raster_.height());
  layout.plot = {std::ceil(kEdge + kLineHeight + widest(measure, layout.rows) + kTick + kGap), kEdge + 34,
                 static_cast<double>(raster_.width()), static_cast<double>(raster_.height())};
  const double barHeight = std::clamp<double>(raster_.height() - 2 * kBarTip, kLeastBar, kMostBar);
  layout.bar = roundTicks(heatmap_.low, heatmap_.high, static_cast<int>(barHeight / 40));
  layout.scale = {layout.plot.x + layout.plot.width + 3 * kGap, layout.plot.y + kBarTip, kBarWidth, barHeight};

  double labels = widest(measure, layout.bar);
  if (heatmap_.most > heatmap_.high) labels = std::max(labels, measure.textWidth(mostText(), kSmall));
  if (heatmap_.least < heatmap_.low) labels = std::max(labels, measure.textWidth(leastText(), kSmall));
  layout.barLabelX = layout.scale.x + kBarWidth + kTick + kGap + labels + kLineHeight;
  double right = layout.barLabelX + kGap;
  for (const std::string& note : heatmap_.notes) right = std::max(right, kEdge + measure.textWidth(note, kNote));

  const double plotEnd = layout.plot.y + layout.plot.height + kTick + 2 * kLineHeight + kGap;
  layout.legendY = std::max(plotEnd, layout.scale.y + layout.scale.height + kBarTip) + kLineHeight;
  layout.notesY = layout.legendY + (missing_ ? kLineHeight + 4 : 0);
  layout.width = static_cast<int>(std::ceil(std::max(right + kEdge, kLeastWidth)));
  layout.height = static_cast<int>(
      std::ceil(layout.notesY + static_cast<double>(heatmap_.notes.size()) * kLineHeight + kEdge - kLineHeight + 4));
  return layout;
}

Colour Picture::colourAt(int x, int y) const {
  if (raster_.has(x, y)) return colours_.at(position(raster_.at(x, y)));
  return (x + y) % 8 < 2 ? kMissingStroke : kMissingGround;
}

void Picture::drawCells() {
  std::vector<Colour> colours;
  colours.reserve(static_cast<std::size_t>(raster_.width()) * static_cast<std::size_t>(raster_.height()));
  for (int y = 0; y < raster_.height(); ++y) {
    for (int x = 0; x < raster_.width(); ++x) colours.push_back(colourAt(x, y));
  }
  canvas_.pixels(static_cast<int>(layout_.plot.x), static_cast<int>(layout_.plot.y), raster_.width(), colours);
  const Box& plot = layout_.plot;
  canvas_.frame({plot.x - 0.5, plot.y - 0.5, plot.width + 1, plot.height + 1}, kInk, 1);
}

Box Picture::boxOf(const Rect& rect) const {
  const double left = layout_.plot.x + raster_.pixelAcross(rect.left);
  const double top = layout_.plot.y + raster_.pixelDown(rect.top);
  const double right = layout_.plot.x + raster_.pixelAcross(std::int64_t{rect.right} + 1);
  const double bottom = layout_.plot.y + raster_.pixelDown(std::int64_t{rect.bottom} + 1);
  return {left, top, right - left, bottom - top};
}

// White on black, to be seen on every colour. What frames the whole picture needs no outline; the title names it.
void Picture::drawOutlines() {
  std::vector<Box> taken;
  canvas_.clip(layout_.plot);
  for (const bool areas : {true, false}) {  // screens on top
    for (const Outline& outline : heatmap_.outlines) {
      const Box box = boxOf(outline.rect);
      const bool tiny = areas && std::min(box.width, box.height) < kLeastOutlined;
      if (outline.area != areas || tiny || holds(outline.rect, raster_.region())) continue;
      canvas_.frame(box, kBlack, areas ? 1.5 : 3);
      canvas_.frame(box, kPaper, areas ? 0.8 : 1.2, areas);
    }
  }
  for (const Outline& outline : heatmap_.outlines) {
    if (!holds(outline.rect, raster_.region())) drawName(outline, boxOf(outline.rect), taken);
  }
  canvas_.unclip();
}

// Screens are named at the top, areas at the bottom; a name without room of its own is left out.
void Picture::drawName(const Outline& outline, const Box& box, std::vector<Box>& taken) {
  const double left = std::max(box.x, layout_.plot.x);
  const double top = std::max(box.y, layout_.plot.y);
  const Box seen{left, top, std::min(box.x + box.width, layout_.plot.x + layout_.plot.width) - left,
                 std::min(box.y + box.height, layout_.plot.y + layout_.plot.height) - top};
  const double y = outline.area ? seen.y + seen.height - kLineHeight - 3 : seen.y + 3;
  const std::string name = canvas_.shortened(outline.name, seen.width - 14, kName);
  const Box label{seen.x + 3, y, canvas_.textWidth(name, kName) + 8, kLineHeight};
  const auto meets = [&](const Box& other) { return other.meets(label); };
  if (name.empty() || !seen.holds(label) || std::any_of(taken.begin(), taken.end(), meets)) return;
  canvas_.fill(label, kBlack, 0.6);
  canvas_.text(name, label.x + 4, label.y + 12, Align::kLeft, kName);
  taken.push_back(label);
}

void Picture::drawAxes() {
  const Box& plot = layout_.plot;
  const double bottom = plot.y + plot.height;
  for (const double value : layout_.columns.values) {
    const auto cell = static_cast<std::int64_t>(value);
    const double x = plot.x + (raster_.pixelAcross(cell) + raster_.pixelAcross(cell + 1)) / 2;
    canvas_.line({x, bottom}, {x, bottom + kTick}, kInk, 1);
    canvas_.text(tickText(value, layout_.columns.step), x, bottom + kTick + 13, Align::kMiddle, kSmall);
  }
  for (const double value : layout_.rows.values) {
    const auto cell = static_cast<std::int64_t>(value);
    const double y = plot.y + (raster_.pixelDown(cell) + raster_.pixelDown(cell + 1)) / 2;
    canvas_.line({plot.x - kTick, y}, {plot.x, y}, kInk, 1);
    canvas_.text(tickText(value, layout_.rows.step), plot.x - kTick - 4, y + kDigitHeight / 2, Align::kRight, kSmall);
  }
  canvas_.text("column", plot.x + plot.width / 2, bottom + kTick + 13 + kLineHeight, Align::kMiddle, kText);
  canvas_.turnedText("row", kEdge + 10, plot.y + plot.height / 2, kText);
}

void Picture::drawBar() {
  const Box& bar = layout_.scale;
  for (int i = 0; i < static_cast<int>(bar.height); ++i) {
    const double share = (i + 0.5) / std::floor(bar.height);
    canvas_.fill({bar.x, bar.y + bar.height - i - 1, bar.width, 1}, colours_.at(share));
  }
  if (heatmap_.most > heatmap_.high) drawTip(true);
  if (heatmap_.least < heatmap_.low) drawTip(false);
  canvas_.frame({bar.x - 0.5, bar.y - 0.5, bar.width + 1, bar.height + 1}, kInk, 1);
  const double right = bar.x + bar.width;
  for (const double value : layout_.bar.values) {
    const double y = bar.y + bar.height * (1 - position(value));
    canvas_.line({right, y}, {right + kTick, y}, kInk, 1);
    canvas_.text(tickText(value, layout_.bar.step), right + kTick + 4, y + kDigitHeight / 2, Align::kLeft, kSmall);
  }
  canvas_.turnedText(canvas_.shortened(heatmap_.label, bar.height + 2 * kBarTip, kText), layout_.barLabelX,
                     bar.y + bar.height / 2, kText);
}

// Cells beyond the range have the end's colour; the number says how far they go.
void Picture::drawTip(bool upper) {
  const Box& bar = layout_.scale;
  const double base = upper ? bar.y : bar.y + bar.height;
  const double tip = upper ? base - kBarTip : base + kBarTip;
  canvas_.fill({{bar.x, base}, {bar.x + bar.width / 2, tip}, {bar.x + bar.width, base}}, colours_.at(upper ? 1 : 0));
  const std::string text = upper ? mostText() : leastText();
  canvas_.text(text, bar.x + bar.width + kTick + 4, upper ? tip + 5 : tip + 3, Align::kLeft, kSmall);
}

void Picture::drawNotes() {
  if (missing_) {
    std::vector<Colour> pattern;
    for (int i = 0; i < 18 * 12; ++i) pattern.push_back((i % 18 + i / 18) % 8 < 2 ? kMissingStroke : kMissingGround);
    const int top = static_cast<int>(layout_.legendY) - 10;
    canvas_.pixels(static_cast<int>(kEdge), top, 18, pattern);
    canvas_.frame({kEdge - 0.5, top - 0.5, 19, 13}, kInk, 1);
    canvas_.text("no cells, or no numbers", kEdge + 18 + kGap, layout_.legendY, Align::kLeft, kNote);
  }
  double y = layout_.notesY;
  for (const std::string& note : heatmap_.notes) {
    canvas_.text(note, kEdge, y, Align::kLeft, kNote);
    y += kLineHeight;
  }
}

}  // namespace

std::vector<unsigned char> drawHeatmap(const Raster& raster, const Heatmap& heatmap) {
  return Picture(raster, heatmap).draw();
}

}  // namespace tovrtool
