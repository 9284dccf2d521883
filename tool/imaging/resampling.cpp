// resample_step, resample_crop
#include "imaging/resampling.h"

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

void check_status(int32_t status, const GainTables& result, const std::string& name) {
    if (status != 0)
        data_failure("{}: cannot be carried over to frames of {} x {} with --step {}, which is a grid of {} "
                     "x {} nodes: "
                     "give a smaller --step",
                     name, result.raw_width, result.raw_height, result.step,
                     result.table_width - 2 * ZERKLSC_BORDER, result.table_height - 2 * ZERKLSC_BORDER);
}

lsc2d_grid grid_of(const GainTables& tables, uint16_t* table) {
    return {table, tables.step, tables.step, tables.table_width - 2 * ZERKLSC_BORDER,
            tables.table_height - 2 * ZERKLSC_BORDER};
}

lsc2d_table_desc desc_of(const GainTables& tables, uint16_t* table) {
    return {static_cast<uint16_t>(tables.plane_width()),
            static_cast<uint16_t>(tables.plane_height()),
            static_cast<uint16_t>(tables.step),
            static_cast<uint16_t>(tables.step),
            static_cast<uint16_t>(tables.table_width),
            static_cast<uint16_t>(tables.table_height),
            table};
}

} // namespace

GainTables resample_step(const GainTables& tables, const std::string& name, int step) {
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

GainTables resample_crop(const GainTables& tables, const std::string& name, const CropWindow& crop, int width,
                         int height, int step) {
    GainTables source = tables;
    GainTables result = resized(tables, width, height, step);
    const lsc2d_crop window{static_cast<uint16_t>(crop.x / 2), static_cast<uint16_t>(crop.y / 2),
                            static_cast<uint16_t>(crop.width / 2), static_cast<uint16_t>(crop.height / 2)};
    for (size_t plane = 0; plane < source.gains.size(); ++plane) {
        const lsc2d_table_desc from = desc_of(source, source.gains[plane].data());
        const lsc2d_table_desc to = desc_of(result, result.gains[plane].data());
        check_status(lsc2d_table_mapping(&from, &to, &window), result, name);
    }
    return result;
}

} // namespace zerklsc::tool
