// relative_gains
#include "imaging/relative_gains.h"

#include <algorithm>

#include <fmt/format.h>

#include "failure.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

std::string nodes_of(const GainTables& tables) {
    return fmt::format("{} x {}, {}, step {}, algorithm {}", tables.raw_width, tables.raw_height,
                       name_of(tables.pattern), tables.step, algorithm_name(tables.algorithm));
}

uint16_t ratio_of(int gain, int golden) {
    const int ratio = (2 * ZERKLSC_UNITY_GAIN * gain + golden) / (2 * golden);
    return static_cast<uint16_t>(std::min(ratio, int{ZERKLSC_HIGHEST_GAIN}));
}

} // namespace

GainTables relative_gains(const GainTables& tables, const std::string& name, const GainTables& golden,
                          const std::string& golden_name) {
    if (nodes_of(tables) != nodes_of(golden))
        data_failure(
            "{}: the tables are for {}, but those of {} for {}: give golden tables of the same frame "
            "size, pattern, step and algorithm",
            golden_name, nodes_of(golden), name, nodes_of(tables));
    GainTables relative = tables;
    for (size_t plane = 0; plane < golden.gains.size(); ++plane)
        for (size_t node = 0; node < golden.gains[plane].size(); ++node) {
            const int by = golden.gains[plane][node];
            if (by == 0)
                data_failure("{}: node {} of plane {} has the gain 0, to which nothing has a ratio",
                             golden_name, node, plane);
            relative.gains[plane][node] = ratio_of(tables.gains[plane][node], by);
        }
    return relative;
}

} // namespace zerklsc::tool
