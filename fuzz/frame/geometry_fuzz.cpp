// lsc2d_grid_samples and lsc2d_table_size with any sizes and steps.
#include "support/input.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const int32_t width = input.number(), height = input.number();
    const int32_t step_x = input.number(), step_y = input.number();
    int32_t grid_w, grid_h, table_w, table_h;
    lsc2d_grid_samples(width, height, step_x, step_y, &grid_w, &grid_h);
    lsc2d_table_size(width, height, step_x, step_y, &table_w, &table_h);
    // The last node lies on or beyond the last sample, and the one before it does not lie beyond it. Counts
    // that 32 bits cannot hold are left out.
    const int64_t last = int64_t{grid_w} - 1;
    const bool covered = last * step_x >= width && (last - 1) * step_x < width;
    zerklsc::fuzz::expect(width <= 0 || width >= INT32_MAX - 2 || step_x <= 0 || covered);
    return 0;
}
