// A drawing surface: the part of the drawing library that pictures need.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tool/pictures/ColourMap.h"

struct _cairo;          // NOLINT(bugprone-reserved-identifier): the names are cairo's
struct _cairo_surface;  // NOLINT(bugprone-reserved-identifier)
struct _PangoLayout;    // NOLINT(bugprone-reserved-identifier): and Pango's

namespace tovrdb::tool {

enum class Align { kLeft, kMiddle, kRight };

struct Font {
  double size = 11;
  bool bold = false;
  Colour colour{34, 34, 34};
};

struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  bool meets(const Box& other) const {
    return x < other.x + other.width && other.x < x + width && y < other.y + other.height && other.y < y + height;
  }
  bool holds(const Box& other) const {
    return other.x >= x && other.y >= y && other.x + other.width <= x + width && other.y + other.height <= y + height;
  }
};

struct Point {
  double x = 0;
  double y = 0;
};

// Lengths are pixels, from the left and the top. Pango lays out text; scripts that the face lacks
// come from any installed font that has them. Failures of the drawing library are kept until png().
class Canvas {
 public:
  // White. Throws std::runtime_error when the surface cannot be made.
  Canvas(int width, int height);
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas();

  // Positions of what is drawn afterwards are relative to this point.
  void moveOrigin(int x, int y);

  // The text as it can be drawn: control characters and invalid UTF-8 are replaced.
  static std::string drawable(const std::string& text);
  double textWidth(const std::string& text, const Font& font);
  // The text's beginning, middle or end at `x`, its base line at `y`.
  void text(const std::string& text, double x, double y, Align align, const Font& font);
  // Turned to read from bottom to top, centred at `y`, its base line at `x`.
  void turnedText(const std::string& text, double x, double y, const Font& font);
  // The text with its end replaced by an ellipsis if it is wider than `width`; empty if not even one character fits.
  std::string shortened(const std::string& text, double width, const Font& font);

  void line(Point from, Point to, const Colour& colour, double thickness);
  void frame(const Box& box, const Colour& colour, double thickness, bool dashed = false);
  void fill(const Box& box, const Colour& colour, double opacity = 1);
  void fill(const std::vector<Point>& corners, const Colour& colour);
  void pixels(int x, int y, int width, const std::vector<Colour>& colours);  // rows of `width`

  // Until unclip(), nothing is drawn outside the box.
  void clip(const Box& box);
  void unclip();

  // Throws std::runtime_error when anything failed.
  std::vector<unsigned char> png();

 private:
  struct SurfaceDeleter {
    void operator()(_cairo_surface* surface) const;
  };
  struct ContextDeleter {
    void operator()(_cairo* context) const;
  };

  struct LayoutDeleter {
    void operator()(_PangoLayout* layout) const;
  };

  void lay(const std::string& text, const Font& font);
  void use(const Colour& colour, double opacity = 1);

  std::unique_ptr<_cairo_surface, SurfaceDeleter> surface_;
  std::unique_ptr<_cairo, ContextDeleter> context_;
  std::unique_ptr<_PangoLayout, LayoutDeleter> layout_;
  int originX_ = 0;
  int originY_ = 0;
};

}  // namespace tovrdb::tool
