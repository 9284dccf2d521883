// The picture that zerklsc preview draws: a row of panels for each quantity, a column for each colour.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "preview/canvas.h"
#include "preview/field.h"

namespace zerklsc::tool {

struct Panel {
    Field field;
    std::string caption; // below the panel
};

struct PanelRow {
    std::string title;
    double low = 0, high = 1;        // the ends of the scale
    double contour = 0;              // distance of contour lines on the scale; 0: none
    bool deviation = false;          // the scale runs to both sides of its middle
    std::vector<std::string> labels; // along the scale, evenly spaced from low to high
    std::array<Panel, 4> panels;     // in the order of all_colours
};

// Draws the rows below the lines of the heading. All fields have one size.
Canvas draw_sheet(const std::vector<std::string>& heading, const std::vector<PanelRow>& rows);

// The size of the fields for frames of this shape.
struct PanelSize {
    int width, height;
};
PanelSize panel_size(int frame_width, int frame_height);

} // namespace zerklsc::tool
