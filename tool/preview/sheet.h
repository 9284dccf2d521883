// The picture that zerklsc preview draws: rows of panels, each with its scale.
#pragma once

#include <string>
#include <vector>

#include "preview/canvas.h"
#include "preview/rows.h"

namespace zerklsc::tool {

// Draws the rows below the lines of the heading. All fields have one size.
Canvas draw_sheet(const std::vector<std::string>& heading, const std::vector<PanelRow>& rows);

// One panel without what stands around it, and the colours of a row's scale from its low to its high end.
Canvas draw_map(const PanelRow& row, const Panel& panel);
Canvas draw_scale_strip(const PanelRow& row);

// The size of the fields for frames of this shape.
PanelSize panel_size(int frame_width, int frame_height);

} // namespace zerklsc::tool
