// lsc2d_grid_samples, lsc2d_table_size, zerklsc_stream_size and the length of init_center_points' list with
// any sizes and steps.
#include "support/input.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc::fuzz;

// The bytes of all nodes, each of which takes 24 bits or, four by four, 14.
void check_stream_size(int32_t grid_width, int32_t grid_height, int32_t mode) {
    const uint64_t size = zerklsc_stream_size(grid_width, grid_height, mode);
    const uint64_t width = grid_width < 3 ? 0 : static_cast<uint64_t>(grid_width) - 2;
    const uint64_t nodes = grid_height < 3 ? 0 : width * (static_cast<uint64_t>(grid_height) - 2);
    expect(size == (mode == 0 ? 3 * nodes : mode == 1 ? nodes / 4 * 7 : 0));
}

// All points are inside the plane, and only a small plane has none.
void check_center_points(int32_t width, int32_t height) {
    if (elements_of(width, height) < 0)
        return;
    pix_point* points = nullptr;
    int32_t count = -1;
    expect(init_center_points(width, height, &points, &count) == 0);
    expect((count == 0) == (width < 10 || height < 10));
    for (const pix_point* p = points; p < points + count; ++p)
        expect(p->x >= 0 && p->x < width && p->y >= 0 && p->y < height);
    release_center_points(points);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t width = input.number(), height = input.number();
    const int32_t step_x = input.number(), step_y = input.number();
    int32_t grid_w, grid_h, table_w, table_h;
    lsc2d_grid_samples(width, height, step_x, step_y, &grid_w, &grid_h);
    lsc2d_table_size(width, height, step_x, step_y, &table_w, &table_h);
    // The last node lies on or beyond the last sample, and the one before it does not lie beyond it. Counts
    // that 32 bits cannot hold are left out.
    const int64_t last = int64_t{grid_w} - 1;
    const bool covered = last * step_x >= width && (last - 1) * step_x < width;
    expect(width <= 0 || width >= INT32_MAX - 2 || step_x <= 0 || covered);
    check_stream_size(width, height, step_x);
    check_center_points(width, height);
    return 0;
}
