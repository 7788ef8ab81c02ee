#include "tool/pictures/HeatmapPicture.h"

#include <algorithm>

#include "tool/pictures/Canvas.h"
#include "tool/pictures/HeatmapPanel.h"

namespace tovrdb::tool {
namespace {

const Font kTitle{17, true, {34, 34, 34}};
const Font kNote{11, false, {90, 90, 90}};
constexpr int kEdge = 16;
constexpr int kTitleHeight = 28;
constexpr int kLineHeight = 16;

class SheetPicture {
 public:
  explicit SheetPicture(const Sheet& sheet) : sheet_(sheet) {
    const std::size_t columns = static_cast<std::size_t>(sheet.columns);
    for (const Panel& panel : sheet.panels) panels_.emplace_back(*panel.raster, panel.heatmap);
    widths_.resize(columns);
    heights_.resize((panels_.size() + columns - 1) / columns);
    for (std::size_t i = 0; i < panels_.size(); ++i) {
      widths_[i % columns] = std::max(widths_[i % columns], panels_[i].width());
      heights_[i / columns] = std::max(heights_[i / columns], panels_[i].height());
    }
  }

  std::vector<unsigned char> draw() const {
    const bool several = panels_.size() > 1;
    const int notes = several ? static_cast<int>(sheet_.notes.size()) * kLineHeight + kEdge : 0;
    const int top = several ? kEdge + kTitleHeight : 0;
    const int panels = sum(heights_);
    Canvas canvas(sum(widths_), top + panels + notes);
    drawPanels(canvas, top);
    if (!several) return canvas.png();
    canvas.moveOrigin(0, 0);
    canvas.text(canvas.shortened(sheet_.title, sum(widths_) - 2 * kEdge, kTitle), kEdge, kEdge + 16, Align::kLeft,
                kTitle);
    double y = top + panels + kLineHeight;
    for (const std::string& note : sheet_.notes) {
      canvas.text(canvas.shortened(note, sum(widths_) - 2 * kEdge, kNote), kEdge, y, Align::kLeft, kNote);
      y += kLineHeight;
    }
    return canvas.png();
  }

 private:
  static int sum(const std::vector<int>& sizes) {
    int all = 0;
    for (const int size : sizes) all += size;
    return all;
  }

  void drawPanels(Canvas& canvas, int y) const {
    std::size_t next = 0;
    for (const int height : heights_) {
      int x = 0;
      for (std::size_t column = 0; column < widths_.size() && next < panels_.size(); ++column, ++next) {
        canvas.moveOrigin(x, y);
        panels_[next].draw(canvas);
        x += widths_[column];
      }
      y += height;
    }
  }

  const Sheet& sheet_;
  std::vector<HeatmapPanel> panels_;
  std::vector<int> widths_;
  std::vector<int> heights_;
};

}  // namespace

std::vector<unsigned char> drawSheet(const Sheet& sheet) { return SheetPicture(sheet).draw(); }

}  // namespace tovrdb::tool
