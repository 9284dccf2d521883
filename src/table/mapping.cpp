// lsc2d_table_mapping, pixel_position_mapping
#include "frame/convert.h"
#include "table/resample.h"

uint16_t pixel_position_mapping(uint16_t offset, uint16_t position, uint16_t dst_extent,
                                uint16_t src_extent) {
    using namespace zerklsc;
    if (dst_extent == 0)
        return offset;
    const uint32_t product = uint32_t{position} * src_extent;
    const float mapped = static_cast<float>(product) / static_cast<float>(dst_extent) + 0.5f;
    return low16(offset + floor_low16(static_cast<double>(mapped)));
}

int32_t lsc2d_table_mapping(const lsc2d_table_desc* src, const lsc2d_table_desc* dst,
                            const lsc2d_crop* crop) {
    using namespace zerklsc;
    const SourceTable from{src->table, src->table_w, src->table_h, src->step_x, src->step_y};
    const TargetTable to{dst->table,
                         dst->table_w - 2 * ZERKLSC_BORDER,
                         dst->table_h - 2 * ZERKLSC_BORDER,
                         {dst->width, dst->height, dst->step_x, dst->step_y}};
    // Node positions keep 16 bits and are not limited to the destination: the last nodes may map beyond the
    // crop window, up to the edge of the source.
    return resample(
        from, to,
        [&](int32_t i) {
            const uint16_t position = low16(int64_t{i} * dst->step_x);
            return limited_position(pixel_position_mapping(crop->x, position, dst->width, crop->width),
                                    src->width);
        },
        [&](int32_t j) {
            const uint16_t position = low16(int64_t{j} * dst->step_y);
            return limited_position(pixel_position_mapping(crop->y, position, dst->height, crop->height),
                                    src->height);
        });
}
