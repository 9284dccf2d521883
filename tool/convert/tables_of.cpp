// tables_of
#include <fmt/format.h>

#include "convert/shading_file.h"
#include "failure.h"
#include "imaging/resampling.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// The gains of a plane's nodes. The last ones may lie up to a step beyond the frame.
std::vector<float> gains_of_nodes(const GainSurface& surface, const GainTables& tables, int plane) {
    std::vector<float> gains;
    const auto fraction = [&](int node, int parity, int side) {
        return (2.0 * tables.step * node + parity + 0.5) / side;
    };
    for (int j = 0; j < tables.table_height - 2 * ZERKLSC_BORDER; ++j)
        for (int i = 0; i < tables.table_width - 2 * ZERKLSC_BORDER; ++i)
            gains.push_back(static_cast<float>(surface(fraction(i, plane & 1, tables.raw_width),
                                                       fraction(j, plane >> 1, tables.raw_height))));
    return gains;
}

} // namespace

GainTables tables_of(const ShadingSet& set, GainTables tables, const std::string& name, Losses& losses) {
    check_grid(tables.raw_width, tables.raw_height, tables.step, name);
    tables.resize();
    const int columns = tables.table_width - 2 * ZERKLSC_BORDER;
    const int rows = tables.table_height - 2 * ZERKLSC_BORDER;
    // The nodes are where they belong, so the last ones need no move from the last sample.
    constexpr int32_t no_edge_mode = 0;
    int limited = 0;
    for (int plane = 0; plane < ZERKLSC_CHANNELS; ++plane) {
        const Colour colour = colour_of_plane(tables.pattern, plane);
        const std::vector<float> inner =
            gains_of_nodes(set.by_colour[static_cast<size_t>(colour)], tables, plane);
        std::vector<float> bordered(tables.table_size());
        if (update_table_border(inner.data(), bordered.data(), tables.plane_width(), tables.plane_height(),
                                tables.step, tables.step, columns, rows, no_edge_mode, ZERKLSC_FILL_QUADRATIC)
            != 0)
            data_failure(
                "{}: --step {} lays a grid of {} x {} nodes on frames of {} x {}, and at least 3 x 3 "
                "are needed: give a smaller --step",
                name, tables.step, columns, rows, tables.raw_width, tables.raw_height);
        auto& gains = tables.gains[static_cast<size_t>(plane)];
        lsc_table_ftoi(bordered.data(), gains.data(), tables.table_width, tables.table_height);
        for (const uint16_t gain : gains)
            limited += gain > ZERKLSC_HIGHEST_GAIN ? 1 : 0;
        format_lsc_table(gains.data(), tables.table_width, tables.table_height);
    }
    if (limited > 0)
        losses.push_back(fmt::format("{} gains above {:.3f}, the highest of a table, are limited to it",
                                     limited, double{ZERKLSC_HIGHEST_GAIN} / double{ZERKLSC_UNITY_GAIN}));
    return tables;
}

} // namespace zerklsc::tool
