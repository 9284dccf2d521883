// PanelRow, beyond_scale_text, Shown, show, lowest_percent, illumination_row, gain_row, spread_row,
// residual_row, colour_row
#include "preview/rows.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace zerklsc::tool {
namespace {

std::vector<std::string> labels_between(double low, double high, int count, const char* format) {
    std::vector<std::string> labels;
    labels.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        labels.push_back(fmt::format(fmt::runtime(format), low + (high - low) * i / (count - 1)));
    return labels;
}

// The narrowest usual scale that holds 99 % of the deviations; a few pixels in the corners may go beyond it.
double usual_reach(std::vector<double> deviations) {
    const auto most = deviations.begin() + static_cast<ptrdiff_t>(deviations.size() * 99 / 100);
    std::ranges::nth_element(deviations, most, {}, [](double v) { return std::abs(v); });
    double reach = 100;
    for (const double narrower : {50.0, 20.0, 10.0, 5.0, 2.0, 1.0})
        reach = std::abs(*most) <= narrower ? narrower : reach;
    return reach;
}

// The scale of deviations in percent, the same to both sides.
void set_deviation_scale(PanelRow& row) {
    std::vector<double> all;
    all.reserve(row.panels.size() * row.panels.front().field.values.size());
    for (const Panel& panel : row.panels)
        all.insert(all.end(), panel.field.values.begin(), panel.field.values.end());
    const double reach = usual_reach(std::move(all));
    row.low = -reach;
    row.high = reach;
    row.deviation = true;
    row.labels = labels_between(-reach, reach, 5, "{:+.1f} %");
    row.labels[2] = "0 %";
}

Panel colour_panel(const Shown& shown, Colour colour, const char* when, PanelSize size) {
    const Deviation worst = colour_shading(shown.levels, shown.pattern, colour);
    return {block_field(colour_changes(shown.levels, shown.pattern, colour), size).scaled(100),
            fmt::format("{}/G {}, worst {:+.2f} %", name_of(colour), when, 100 * worst.fraction),
            shown.clipped[static_cast<size_t>(colour)]};
}

} // namespace

double PanelRow::beyond_scale() const {
    size_t beyond = 0, all = 0;
    for (const Panel& panel : panels) {
        // The brightest place may come out one rounding above 100 %.
        const double slack = 1e-9 * (high - low);
        const auto outside = [&](double v) { return v < low - slack || v > high + slack; };
        beyond += static_cast<size_t>(std::ranges::count_if(panel.field.values, outside));
        all += panel.field.values.size();
    }
    return static_cast<double>(beyond) / static_cast<double>(all);
}

std::string beyond_scale_text(const PanelRow& row) {
    const double beyond = row.beyond_scale();
    return beyond > 0 ? fmt::format("; {:.2f} % of the area is beyond the scale", 100 * beyond) : "";
}

bool Shown::any_clipped() const {
    return std::ranges::any_of(clipped_fraction, [](double part) { return part > 0; });
}

Shown show(const RawFrame& frame, PanelSize size) {
    Shown shown{*frame.pattern, measure_planes(frame, *frame.black, usual_blocks(frame)), {}, {}, {}};
    auto brightness = brightness_fields(frame, *frame.black, size);
    const auto clipped = clipped_fractions(frame);
    for (size_t i = 0; i < all_colours.size(); ++i) {
        const int number = plane_of_colour(shown.pattern, all_colours[i]);
        const auto plane = static_cast<size_t>(number);
        shown.brightness[i] = std::move(brightness[plane]);
        shown.clipped_fraction[i] = clipped[plane];
        if (clipped[plane] > 0)
            shown.clipped[i] = clipped_places(frame, number, size);
    }
    return shown;
}

double lowest_percent(const Shown& shown) {
    double low = 1;
    for (const PanelField& field : shown.brightness)
        low = std::min(low, field.largest() > 0 ? field.smallest() / field.largest() : 0);
    return std::min(std::floor(low * 10) * 10, 90.0);
}

PanelRow illumination_row(const std::string& title, const Shown& shown, double low) {
    PanelRow row;
    row.title = title;
    row.low = low;
    row.high = 100;
    row.contour = 10;
    row.labels = labels_between(low, 100, static_cast<int>((100 - low) / 10) + 1, "{:.0f} %");
    for (size_t i = 0; i < all_colours.size(); ++i) {
        const double top = shown.brightness[i].largest();
        const PlaneLevels& levels = levels_of(shown.levels, shown.pattern, all_colours[i]);
        row.panels.push_back({shown.brightness[i].scaled(top > 0 ? 100 / top : 0),
                              fmt::format("{}  corner/centre {:.2f} %", name_of(all_colours[i]),
                                          100 * levels.corner_to_centre()),
                              shown.clipped[i]});
    }
    return row;
}

PanelRow gain_row(const GainTables& tables, PanelSize size) {
    PanelRow row;
    row.title =
        fmt::format("gain of the tables ({}, step {})", algorithm_name(tables.algorithm), tables.step);
    double highest = 1;
    for (size_t i = 0; i < all_colours.size(); ++i) {
        const int plane = plane_of_colour(tables.pattern, all_colours[i]);
        row.panels.push_back(
            {gain_field(tables, plane, size),
             fmt::format("{}  largest gain {:.3f}", name_of(all_colours[i]), tables.largest_gain(plane)),
             {}});
        highest = std::max(highest, tables.largest_gain(plane));
    }
    row.low = 1;
    row.high = 1 + std::max(std::ceil((highest - 1) * 2), 1.0) / 2;
    row.contour = (row.high - row.low) / 8;
    row.labels = labels_between(row.low, row.high, 5, "{:.2f}");
    return row;
}

PanelRow spread_row(const GainTables& tables, const std::array<std::vector<double>, 4>& spreads,
                    PanelSize size) {
    PanelRow row;
    row.title = "spread of the gains: robust deviation, percent of the median";
    std::vector<double> all;
    for (size_t i = 0; i < all_colours.size(); ++i) {
        row.panels.push_back({node_field(tables, spreads[i], size).scaled(100), "", {}});
        const PanelField& field = row.panels.back().field;
        row.panels.back().caption = fmt::format("{}  {:.2f} % to {:.2f} %", name_of(all_colours[i]),
                                                field.smallest(), field.largest());
        all.insert(all.end(), field.values.begin(), field.values.end());
    }
    row.low = 0;
    row.high = usual_reach(std::move(all));
    row.labels = labels_between(row.low, row.high, 5, "{:.2f} %");
    return row;
}

PanelRow residual_row(const std::string& title, const Shown& shown) {
    PanelRow row;
    for (size_t i = 0; i < all_colours.size(); ++i) {
        PanelField field = shown.brightness[i];
        const double mean = field.mean();
        for (double& v : field.values)
            v = mean > 0 ? 100 * (v / mean - 1) : 0;
        const PlaneLevels& levels = levels_of(shown.levels, shown.pattern, all_colours[i]);
        row.panels.push_back(
            {std::move(field),
             fmt::format("{}  flat to {:.2f} %", name_of(all_colours[i]), 100 * levels.flatness()),
             shown.clipped[i]});
    }
    row.title = fmt::format("{}: deviation from the channel's mean", title);
    set_deviation_scale(row);
    return row;
}

PanelRow colour_row(const Shown& before, const Shown* after, PanelSize size) {
    PanelRow row;
    row.title = "colour shading: R/G and B/G against the centre";
    for (const Colour colour : {Colour::r, Colour::b})
        row.panels.push_back(colour_panel(before, colour, "before", size));
    if (after != nullptr)
        for (const Colour colour : {Colour::r, Colour::b})
            row.panels.push_back(colour_panel(*after, colour, "after", size));
    set_deviation_scale(row);
    return row;
}

} // namespace zerklsc::tool
