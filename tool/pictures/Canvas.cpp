#include "tool/pictures/Canvas.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>

#include "client/base/Text.h"

namespace tovrdb::tool {
namespace {

constexpr const char* kFontFamily = "DejaVu Sans, sans-serif";  // other faces supply missing characters
constexpr const char* kEllipsis = "\u2026";

void require(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("the picture cannot be drawn: ") + cairo_status_to_string(status));
  }
}

// Independent of the settings of the desktop, so that a picture is the same everywhere.
void setTextRendering(PangoContext* context) {
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context, FALSE);
}

void path(cairo_t* context, const Box& box) { cairo_rectangle(context, box.x, box.y, box.width, box.height); }

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length) {
  try {
    auto& all = *static_cast<std::vector<unsigned char>*>(bytes);
    all.insert(all.end(), data, data + length);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;  // exceptions must not pass through the library
  }
}

}  // namespace

void Canvas::SurfaceDeleter::operator()(_cairo_surface* surface) const { cairo_surface_destroy(surface); }

void Canvas::ContextDeleter::operator()(_cairo* context) const { cairo_destroy(context); }

void Canvas::LayoutDeleter::operator()(_PangoLayout* layout) const { g_object_unref(layout); }

Canvas::Canvas(int width, int height) : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)) {
  require(cairo_surface_status(surface_.get()));
  context_.reset(cairo_create(surface_.get()));
  require(cairo_status(context_.get()));
  layout_.reset(pango_cairo_create_layout(context_.get()));
  setTextRendering(pango_layout_get_context(layout_.get()));
  pango_layout_set_single_paragraph_mode(layout_.get(), TRUE);
  cairo_set_source_rgb(context_.get(), 1, 1, 1);
  cairo_paint(context_.get());
}

Canvas::~Canvas() = default;

void Canvas::moveOrigin(int x, int y) {
  cairo_identity_matrix(context_.get());
  cairo_translate(context_.get(), x, y);
  originX_ = x;
  originY_ = y;
}

std::string Canvas::drawable(const std::string& text) { return validText(printable(text)); }

double Canvas::textWidth(const std::string& text, const Font& font) {
  lay(text, font);
  PangoRectangle extents;
  pango_layout_get_extents(layout_.get(), nullptr, &extents);
  return pango_units_to_double(extents.width);
}

void Canvas::text(const std::string& text, double x, double y, Align align, const Font& font) {
  const double width = textWidth(text, font);
  const double shift = align == Align::kLeft ? 0 : align == Align::kMiddle ? width / 2 : width;
  use(font.colour);
  cairo_move_to(context_.get(), x - shift, y - pango_units_to_double(pango_layout_get_baseline(layout_.get())));
  pango_cairo_update_layout(context_.get(), layout_.get());
  pango_cairo_show_layout(context_.get(), layout_.get());
}

void Canvas::turnedText(const std::string& text, double x, double y, const Font& font) {
  cairo_save(context_.get());
  cairo_translate(context_.get(), x, y);
  cairo_rotate(context_.get(), -1.5707963267948966);
  this->text(text, 0, 0, Align::kMiddle, font);
  cairo_restore(context_.get());
}

std::string Canvas::shortened(const std::string& text, double width, const Font& font) {
  std::string whole = drawable(text);
  if (textWidth(whole, font) <= width) return whole;
  const auto beginning = [&](std::size_t bytes) { return std::string(firstBytes(whole, bytes)); };
  std::size_t fits = 0;
  for (std::size_t tooMany = whole.size(); fits + 1 < tooMany;) {
    const std::size_t half = fits + (tooMany - fits) / 2;
    (textWidth(beginning(half) + kEllipsis, font) <= width ? fits : tooMany) = half;
  }
  const std::string kept = beginning(fits);
  return kept.empty() ? kept : kept + kEllipsis;
}

void Canvas::line(Point from, Point to, const Colour& colour, double thickness) {
  use(colour);
  cairo_set_line_width(context_.get(), thickness);
  cairo_move_to(context_.get(), from.x, from.y);
  cairo_line_to(context_.get(), to.x, to.y);
  cairo_stroke(context_.get());
}

void Canvas::frame(const Box& box, const Colour& colour, double thickness, bool dashed) {
  const double dash = 4;
  use(colour);
  cairo_set_line_width(context_.get(), thickness);
  cairo_set_dash(context_.get(), &dash, dashed ? 1 : 0, 0);
  path(context_.get(), box);
  cairo_stroke(context_.get());
  cairo_set_dash(context_.get(), nullptr, 0, 0);
}

void Canvas::fill(const Box& box, const Colour& colour, double opacity) {
  use(colour, opacity);
  path(context_.get(), box);
  cairo_fill(context_.get());
}

void Canvas::fill(const std::vector<Point>& corners, const Colour& colour) {
  use(colour);
  cairo_new_path(context_.get());  // drawn text leaves a point behind
  for (const Point& corner : corners) cairo_line_to(context_.get(), corner.x, corner.y);
  cairo_close_path(context_.get());
  cairo_fill(context_.get());
}

// Written directly, without blending, so that a pixel has exactly the colour that it was given.
void Canvas::pixels(int x, int y, int width, const std::vector<Colour>& colours) {
  cairo_surface_flush(surface_.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface_.get());
  unsigned char* const surface = cairo_image_surface_get_data(surface_.get());
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const auto row = static_cast<std::ptrdiff_t>(i / static_cast<std::size_t>(width));
    const auto column = static_cast<std::ptrdiff_t>(i % static_cast<std::size_t>(width));
    const Colour& colour = colours[i];
    const std::uint32_t word = static_cast<std::uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue);
    std::memcpy(surface + (originY_ + y + row) * stride + (originX_ + x + column) * 4, &word, sizeof word);
  }
  cairo_surface_mark_dirty(surface_.get());
}

void Canvas::clip(const Box& box) {
  cairo_save(context_.get());
  path(context_.get(), box);
  cairo_clip(context_.get());
}

void Canvas::unclip() { cairo_restore(context_.get()); }

std::vector<unsigned char> Canvas::png() {
  require(cairo_status(context_.get()));
  std::vector<unsigned char> bytes;
  require(cairo_surface_write_to_png_stream(surface_.get(), append, &bytes));
  return bytes;
}

void Canvas::lay(const std::string& text, const Font& font) {
  PangoFontDescription* const description = pango_font_description_new();
  pango_font_description_set_family_static(description, kFontFamily);
  pango_font_description_set_weight(description, font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_font_description_set_absolute_size(description, font.size * PANGO_SCALE);
  pango_layout_set_font_description(layout_.get(), description);
  pango_font_description_free(description);
  pango_layout_set_text(layout_.get(), drawable(text).c_str(), -1);
}

void Canvas::use(const Colour& colour, double opacity) {
  cairo_set_source_rgba(context_.get(), colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0, opacity);
}

}  // namespace tovrdb::tool
