// check_grid, resample_crop
#include "imaging/resampling.h"

#include <algorithm>

#include "failure.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

GainTables resized(const GainTables& tables, int width, int height, int step) {
    GainTables result = tables;
    result.raw_width = width;
    result.raw_height = height;
    result.step = step;
    result.resize();
    return result;
}

int inner(int table_side) {
    return table_side - 2 * ZERKLSC_BORDER;
}

void check_status(int32_t status, const GainTables& result, const std::string& name) {
    if (status == 0)
        return;
    const int columns = inner(result.table_width), rows = inner(result.table_height);
    data_failure("{}: cannot be carried over to frames of {} x {} with step {}, a grid of {} x {} nodes: {}",
                 name, result.raw_width, result.raw_height, result.step, columns, rows,
                 std::min(columns, rows) < 3 ? "at least 3 x 3 are needed: choose a smaller step"
                                             : "calibrate with a smaller step");
}

lsc2d_grid grid_of(const GainTables& tables, uint16_t* table) {
    return {table, tables.step, tables.step, inner(tables.table_width), inner(tables.table_height)};
}

// One direction of a crop, in plane samples.
struct Axis {
    int source, offset, window, target;
};

// lsc2d_table_mapping() reads its last node where that maps to, yet corrects it as if it had been read at the
// last sample of the new frame. Both are true only where the window ends with the source. Elsewhere the new
// frame is described as ending at its last node, which leaves nothing to correct, and the source as reaching
// to its own last node.
Axis end_at_last_node(Axis axis, int source_nodes, int source_step, int target_nodes, int target_step) {
    if (axis.offset + axis.window == axis.source)
        return axis;
    const int target = (target_nodes - 1) * target_step + 1;
    const int64_t window = (int64_t{axis.window} * target + axis.target / 2) / axis.target;
    axis.window = static_cast<int>(std::min(window, int64_t{65535}));
    axis.target = target;
    axis.source = (source_nodes - 1) * source_step;
    return axis;
}

lsc2d_table_desc desc_of(GainTables& tables, size_t plane, int width, int height) {
    return {static_cast<uint16_t>(width),
            static_cast<uint16_t>(height),
            static_cast<uint16_t>(tables.step),
            static_cast<uint16_t>(tables.step),
            static_cast<uint16_t>(tables.table_width),
            static_cast<uint16_t>(tables.table_height),
            tables.gains[plane].data()};
}

// More nodes than samples of a large sensor's plane carry no information, and take hundreds of megabytes.
constexpr int64_t largest_grid = int64_t{1} << 22;

// The whole frame on a grid of another step.
GainTables resample_step(const GainTables& tables, const std::string& name, int step) {
    if (step == tables.step)
        return tables;
    check_grid(tables.raw_width, tables.raw_height, step, name);
    GainTables source = tables;
    GainTables result = resized(tables, tables.raw_width, tables.raw_height, step);
    for (size_t plane = 0; plane < source.gains.size(); ++plane) {
        const lsc2d_grid from = grid_of(source, source.gains[plane].data());
        const lsc2d_grid to = grid_of(result, result.gains[plane].data());
        check_status(lsc2d_grid_convert(&from, &to, tables.plane_width(), tables.plane_height()), result,
                     name);
    }
    return result;
}

} // namespace

void check_grid(int width, int height, int step, const std::string& name) {
    GainTables target;
    target.raw_width = width;
    target.raw_height = height;
    target.step = step;
    target.set_table_size();
    const int64_t columns = inner(target.table_width), rows = inner(target.table_height);
    if (columns * rows > largest_grid)
        data_failure(
            "{}: frames of {} x {} with step {} need a grid of {} x {} nodes, and {} nodes are the most: "
            "choose a larger step",
            name, width, height, step, columns, rows, largest_grid);
}

GainTables resample_crop(const GainTables& tables, const std::string& name, const CropWindow& crop, int width,
                         int height, int step) {
    const bool whole =
        crop.x == 0 && crop.y == 0 && crop.width == tables.raw_width && crop.height == tables.raw_height;
    if (whole && width == tables.raw_width && height == tables.raw_height)
        return resample_step(tables, name, step);
    check_grid(width, height, step, name);
    GainTables source = tables;
    GainTables result = resized(tables, width, height, step);
    const Axis x = end_at_last_node({tables.plane_width(), crop.x / 2, crop.width / 2, result.plane_width()},
                                    inner(tables.table_width), tables.step, inner(result.table_width), step);
    const Axis y =
        end_at_last_node({tables.plane_height(), crop.y / 2, crop.height / 2, result.plane_height()},
                         inner(tables.table_height), tables.step, inner(result.table_height), step);
    const lsc2d_crop window{static_cast<uint16_t>(x.offset), static_cast<uint16_t>(y.offset),
                            static_cast<uint16_t>(x.window), static_cast<uint16_t>(y.window)};
    for (size_t plane = 0; plane < source.gains.size(); ++plane) {
        const lsc2d_table_desc from = desc_of(source, plane, x.source, y.source);
        const lsc2d_table_desc to = desc_of(result, plane, x.target, y.target);
        check_status(lsc2d_table_mapping(&from, &to, &window), result, name);
    }
    return result;
}

} // namespace zerklsc::tool
