// A quantity over a plane at the size at which it is drawn.
#pragma once

#include <array>
#include <vector>

#include "imaging/gain_tables.h"
#include "imaging/levels.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

struct PanelField {
    int width = 0;
    int height = 0;
    std::vector<double> values; // row by row

    double at(int x, int y) const {
        return values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    double smallest() const;
    double largest() const;
    double mean() const;
    PanelField scaled(double factor) const;
};

struct PanelSize {
    int width, height;
};

// The planes' brightness above `black`, averaged so far that noise does not show.
std::array<PanelField, 4> brightness_fields(const RawFrame& frame, const BlackLevel& black, PanelSize size);

// Which pixels of such a field, row by row, lie over a sample of the plane at the white level.
std::vector<bool> clipped_places(const RawFrame& frame, int plane, PanelSize size);

// Numbers of blocks, with a straight line from the middle of one to the next.
PanelField block_field(const BlockMeans& blocks, PanelSize size);

// Numbers of the nodes of such tables, border included and row by row, between the nodes.
PanelField node_field(const GainTables& tables, const std::vector<double>& values, PanelSize size);

// The plane's gains between the nodes.
PanelField gain_field(const GainTables& tables, int plane, PanelSize size);

} // namespace zerklsc::tool
