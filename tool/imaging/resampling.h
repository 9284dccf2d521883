// Gain tables for another grid step, or for a frame that is cropped and scaled from the calibrated one.
#pragma once

#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// A window in pixels of the calibrated frame; all numbers even, so that colours stay where they are.
struct CropWindow {
    int x, y, width, height;
};

// A data failure when a step lays more nodes on frames than is reasonable. `name` is for messages.
void check_grid(int width, int height, int step, const std::string& name);

// The tables of a frame of width x height pixels that shows the window.
GainTables resample_crop(const GainTables& tables, const std::string& name, const CropWindow& crop, int width,
                         int height, int step);

} // namespace zerklsc::tool
