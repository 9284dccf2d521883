// draw_sheet, draw_map, draw_scale_strip, panel_size
#include "preview/sheet.h"

#include <algorithm>
#include <cmath>

#include "preview/colour_map.h"

namespace zerklsc::tool {
namespace {

constexpr Rgb paper{250, 250, 248};
constexpr Rgb ink{38, 40, 46};
constexpr Rgb faint_ink{120, 124, 132};
constexpr Rgb clipping_ink{214, 0, 158}; // in neither colour map

constexpr int margin = 28;
constexpr int gap = 18;     // between columns
constexpr int row_gap = 26; // between rows
constexpr int line_height = text_height + 10;
constexpr int scale_width = 18;
constexpr int scale_label_width = 84;
constexpr int widest_panel = 316;
constexpr int tallest_panel = 316;

Rgb colour_of(const PanelRow& row, double value) {
    const double t = (value - row.low) / (row.high - row.low);
    return row.deviation ? diverging_colour(t) : sequential_colour(t);
}

// A contour shows as the map's own colour, darker.
Rgb darker(Rgb c) {
    const auto dim = [](uint8_t v) { return static_cast<uint8_t>(v * 6 / 10); };
    return {dim(c.r), dim(c.g), dim(c.b)};
}

// Between which contours each pixel of a line lies, and after the last one what it has.
std::vector<double> bands_of(const PanelRow& row, const PanelField& field, int y) {
    std::vector<double> bands(static_cast<size_t>(field.width) + 1);
    if (row.contour <= 0)
        return bands;
    // The ends of the scale are no contours: a field touches them in single points.
    for (int x = 0; x < field.width; ++x)
        bands[static_cast<size_t>(x)] =
            std::ceil(std::clamp(field.at(x, y), row.low, row.high) / row.contour);
    bands.back() = bands[bands.size() - 2];
    return bands;
}

void draw_field(Canvas& canvas, int left, int top, const PanelRow& row, const Panel& panel) {
    const PanelField& field = panel.field;
    std::vector<double> bands, below = bands_of(row, field, 0);
    for (int y = 0; y < field.height; ++y) {
        bands = std::move(below);
        below = bands_of(row, field, std::min(y + 1, field.height - 1));
        for (int x = 0; x < field.width; ++x) {
            const auto at = static_cast<size_t>(x);
            const Rgb colour = colour_of(row, field.at(x, y));
            const bool clipped =
                !panel.clipped.empty() && panel.clipped[static_cast<size_t>(y * field.width + x)];
            const bool contour = bands[at] != bands[at + 1] || bands[at] != below[at];
            canvas.set(left + x, top + y, clipped ? clipping_ink : contour ? darker(colour) : colour);
        }
    }
}

void draw_panel(Canvas& canvas, int left, int top, const PanelRow& row, const Panel& panel) {
    draw_field(canvas, left, top, row, panel);
    canvas.frame({left, top, panel.field.width, panel.field.height}, faint_ink);
    canvas.text(left, top + panel.field.height + 8, panel.caption, ink);
}

void draw_scale(Canvas& canvas, int left, int top, int height, const PanelRow& row) {
    for (int y = 0; y < height; ++y) {
        const double t = 1 - (y + 0.5) / height;
        canvas.fill({left, top + y, scale_width, 1}, colour_of(row, row.low + t * (row.high - row.low)));
    }
    canvas.frame({left, top, scale_width, height}, faint_ink);
    const int last = static_cast<int>(row.labels.size()) - 1;
    for (int i = 0; i <= last; ++i) {
        const int y = top + (height - 1) * (last - i) / std::max(last, 1);
        canvas.fill({left + scale_width + 1, y, 5, 1}, faint_ink);
        canvas.text(left + scale_width + 11, y - text_height / 2, row.labels[static_cast<size_t>(i)], ink);
    }
}

// A panel or its caption.
int widest_column(const std::vector<PanelRow>& rows) {
    int widest = 0;
    for (const PanelRow& row : rows)
        for (const Panel& panel : row.panels)
            widest = std::max({widest, panel.field.width, text_width(panel.caption)});
    return widest;
}

} // namespace

PanelSize panel_size(int frame_width, int frame_height) {
    const double shrink = std::min(double{widest_panel} / frame_width, double{tallest_panel} / frame_height);
    return {std::max(static_cast<int>(frame_width * shrink), 16),
            std::max(static_cast<int>(frame_height * shrink), 16)};
}

Canvas draw_map(const PanelRow& row, const Panel& panel) {
    Canvas canvas(panel.field.width, panel.field.height, paper);
    draw_field(canvas, 0, 0, row, panel);
    return canvas;
}

Canvas draw_scale_strip(const PanelRow& row) {
    constexpr int length = 256;
    Canvas canvas(length, 1, paper);
    for (int x = 0; x < length; ++x)
        canvas.set(x, 0, colour_of(row, row.low + (x + 0.5) / length * (row.high - row.low)));
    return canvas;
}

Canvas draw_sheet(const std::vector<std::string>& heading, const std::vector<PanelRow>& rows) {
    const PanelField& first = rows.front().panels[0].field;
    const int column = widest_column(rows) + gap;
    const int row_height = line_height + first.height + line_height + row_gap;
    const int width = 2 * margin + 4 * column + scale_width + 11 + scale_label_width;
    const int height = 2 * margin + static_cast<int>(heading.size()) * line_height + gap
                       + static_cast<int>(rows.size()) * row_height - row_gap;
    Canvas canvas(width, height, paper);
    int y = margin;
    for (const std::string& line : heading) {
        canvas.text(margin, y, line, &line == heading.data() ? ink : faint_ink);
        y += line_height;
    }
    y += gap;
    for (const PanelRow& row : rows) {
        canvas.text(margin, y, row.title, ink);
        const int top = y + line_height;
        for (size_t i = 0; i < row.panels.size(); ++i)
            draw_panel(canvas, margin + static_cast<int>(i) * column, top, row, row.panels[i]);
        draw_scale(canvas, margin + 4 * column, top, first.height, row);
        y += row_height;
    }
    return canvas;
}

} // namespace zerklsc::tool
