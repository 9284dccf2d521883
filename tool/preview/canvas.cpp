// Canvas, text_width
#include "preview/canvas.h"

#include "preview/font.h"

namespace zerklsc::tool {
namespace {

// The font's dots are drawn this large.
constexpr int dot = 2;

} // namespace

Canvas::Canvas(int width, int height, Rgb background)
    : width_(width), height_(height),
      pixels_(static_cast<size_t>(width) * static_cast<size_t>(height), background) {}

void Canvas::fill(Rectangle area, Rgb colour) {
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int x = area.x; x < area.x + area.width; ++x)
            set(x, y, colour);
}

void Canvas::frame(Rectangle area, Rgb colour) {
    fill({area.x - 1, area.y - 1, area.width + 2, 1}, colour);
    fill({area.x - 1, area.y + area.height, area.width + 2, 1}, colour);
    fill({area.x - 1, area.y, 1, area.height}, colour);
    fill({area.x + area.width, area.y, 1, area.height}, colour);
}

void Canvas::text(int x, int y, const std::string& line, Rgb colour) {
    for (const char c : line) {
        const Glyph& rows = glyph_of(c);
        for (int j = 0; j < glyph_rows; ++j)
            for (int i = 0; i < glyph_columns; ++i)
                if ((rows[static_cast<size_t>(j)] >> (glyph_columns - 1 - i) & 1) != 0)
                    fill({x + dot * i, y + dot * j, dot, dot}, colour);
        x += dot * (glyph_columns + 1);
    }
}

int text_width(const std::string& line) {
    return static_cast<int>(line.size()) * dot * (glyph_columns + 1) - dot;
}

} // namespace zerklsc::tool
