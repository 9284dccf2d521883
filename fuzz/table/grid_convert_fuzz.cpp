// lsc2d_grid_convert with any grids on any plane.
#include "support/input.h"
#include "zerklsc.h"

namespace {

lsc2d_grid take_grid(zerklsc::fuzz::Input& input) {
    lsc2d_grid grid{};
    for (int32_t* field : {&grid.step_x, &grid.step_y, &grid.grid_w, &grid.grid_h})
        *field = input.number();
    return grid;
}

// That the source has the rows which the last node's stencil reaches is the caller's to see to.
int64_t source_entries(const lsc2d_grid& src, const lsc2d_grid& dst, int32_t height) {
    if (src.step_y < 1)
        return 0;
    const int64_t last = (int64_t{dst.grid_h} - 1) * dst.step_y;
    const int64_t furthest = std::clamp<int64_t>(last, 0, int64_t{std::max(height, 1)} - 1);
    return zerklsc::fuzz::elements_of(int64_t{src.grid_w} + 2, furthest / src.step_y + 4);
}

int64_t entries(const lsc2d_grid& grid) {
    return zerklsc::fuzz::elements_of(int64_t{grid.grid_w} + 2, int64_t{grid.grid_h} + 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const int32_t width = input.number(), height = input.number();
    lsc2d_grid src = take_grid(input), dst = take_grid(input);
    const int64_t read = source_entries(src, dst, height);
    if (read < 0 || entries(dst) < 0)
        return 0;
    std::vector<uint16_t> from = input.buffer<uint16_t>(read), to = input.buffer<uint16_t>(entries(dst));
    src.table = from.data();
    dst.table = to.data();
    lsc2d_grid_convert(&src, &dst, width, height);
    return 0;
}
