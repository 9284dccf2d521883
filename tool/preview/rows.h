// What the pictures show of a frame and its correction: one row of panels for each quantity.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "imaging/gain_tables.h"
#include "imaging/levels.h"
#include "preview/panel_field.h"

namespace zerklsc::tool {

struct Panel {
    PanelField field;
    std::string caption;       // below the panel
    std::vector<bool> clipped; // pixels over clipped samples, row by row; may be empty
};

// All fields of a row have one size.
struct PanelRow {
    std::string title;
    double low = 0, high = 1;        // the ends of the scale
    double contour = 0;              // distance of contour lines on the scale; 0: none
    bool deviation = false;          // the scale runs to both sides of its middle
    std::vector<std::string> labels; // along the scale, evenly spaced from low to high
    std::vector<Panel> panels;       // four at most

    // The part of the panels' area whose values lie beyond an end of the scale.
    double beyond_scale() const;
};

// "; 1.25 % of the area is beyond the scale", or nothing where none is.
std::string beyond_scale_text(const PanelRow& row);

// A frame as it is shown.
struct Shown {
    BayerPattern pattern;
    FrameLevels levels;
    std::array<PanelField, 4> brightness;     // by colour, as what follows
    std::array<std::vector<bool>, 4> clipped; // empty where no sample is
    std::array<double, 4> clipped_fraction;

    bool any_clipped() const;
};

// Pattern and black level of the frame are known.
Shown show(const RawFrame& frame, PanelSize size);

// The scale's lower end that shows the darkest corner and is a round number, percent.
double lowest_percent(const Shown& shown);

// Each channel in percent of its brightest place. `low` is the lower end of the scale.
PanelRow illumination_row(const std::string& title, const Shown& shown, double low);

PanelRow gain_row(const GainTables& tables, PanelSize size);

// How far the gains of modules lie apart: of each node of such tables, by colour, as a fraction.
PanelRow spread_row(const GainTables& tables, const std::array<std::vector<double>, 4>& spreads,
                    PanelSize size);

// The deviation of each channel from its mean.
PanelRow residual_row(const std::string& title, const Shown& shown);

// R/G and B/G against the centre, of the frame and, where there is one, of its corrected form.
PanelRow colour_row(const Shown& before, const Shown* after, PanelSize size);

} // namespace zerklsc::tool
