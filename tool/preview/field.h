// A quantity over a plane at the size at which it is drawn.
#pragma once

#include <vector>

#include "imaging/gain_tables.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

struct Field {
    int width = 0;
    int height = 0;
    std::vector<double> values; // row by row

    double at(int x, int y) const {
        return values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    double smallest() const;
    double largest() const;
    double mean() const;
    Field scaled(double factor) const;
};

// The plane's brightness, averaged so far that noise does not show.
Field brightness_field(const RawFrame& frame, int plane, int width, int height);

// The plane's gains between the nodes.
Field gain_field(const GainTables& tables, int plane, int width, int height);

} // namespace zerklsc::tool
