// lsc2d_otp_table
#include <cstring>

#include "bicubic/generator/geometry.h"
#include "bicubic/generator/record.h"
#include "frame/planes.h"
#include "frame/scratch.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc;

// The inner nodes of a bordered table, packed.
void copy_inner_nodes(const uint16_t* table, size_t grid_w, size_t grid_h, uint8_t* out) {
    const size_t row_bytes = grid_w * sizeof(uint16_t);
    for (size_t j = 0; j < grid_h; ++j) {
        table += grid_w + 2 * ZERKLSC_BORDER;
        std::memcpy(out, table + ZERKLSC_BORDER, row_bytes);
        out += row_bytes;
    }
}

bool usable(uint8_t* const* out, const uint32_t* calib) {
    return calib != nullptr && out != nullptr && all_given(out);
}

// Whether the nodes are as many as the generator lays over the planes of the frame.
bool is_grid_of(uint32_t grid_w, uint32_t grid_h, uint16_t width, uint16_t height, int32_t step) {
    int32_t nodes_w = 0;
    int32_t nodes_h = 0;
    lsc2d_grid_samples(width >> 1, height >> 1, step, step, &nodes_w, &nodes_h);
    return step != 0 && grid_w == static_cast<uint32_t>(nodes_w) && grid_h == static_cast<uint32_t>(nodes_h);
}

} // namespace

// Words 0, 1 and 2 of `calib` are step, margin and percentage here, where the calibration front ends read
// words 0, 2 and 7: these are three words of their own, not an lsc2d_calib_param.
int32_t lsc2d_otp_table(uint16_t* raw, uint16_t width, uint16_t height, uint8_t** out, uint32_t grid_w,
                        uint32_t grid_h, uint32_t* calib) {
    if (!usable(out, calib))
        return -1;
    if (!is_grid_of(grid_w, grid_h, width, height, generator_step(calib[0])))
        return -1;
    const uint64_t entries =
        (uint64_t{grid_w} + 2 * ZERKLSC_BORDER) * (uint64_t{grid_h} + 2 * ZERKLSC_BORDER);
    const Scratch<uint16_t> bordered = allocate<uint16_t>(ZERKLSC_CHANNELS * entries);
    if (!bordered)
        return -1;
    uint16_t* tables[ZERKLSC_CHANNELS];
    for (size_t k = 0; k < ZERKLSC_CHANNELS; ++k)
        tables[k] = bordered.get() + k * static_cast<size_t>(entries);
    isp_param_tag param = generator_record(width, height, tables, calib[0], calib[1], calib[2]);
    if (bicubic_lnc_param_gen_orvel_otp(raw, &param) != 0)
        return -1;
    for (size_t k = 0; k < ZERKLSC_CHANNELS; ++k)
        copy_inner_nodes(tables[k], grid_w, grid_h, out[k]);
    return 0;
}
