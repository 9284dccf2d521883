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

int64_t entries(const lsc2d_grid& grid) {
    return zerklsc::fuzz::elements_of(int64_t{grid.grid_w} + 2, int64_t{grid.grid_h} + 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const int32_t width = input.number(), height = input.number();
    lsc2d_grid src = take_grid(input), dst = take_grid(input);
    if (entries(src) < 0 || entries(dst) < 0)
        return 0;
    std::vector<uint16_t> from = input.buffer<uint16_t>(entries(src)),
                          to = input.buffer<uint16_t>(entries(dst));
    src.table = from.data();
    dst.table = to.data();
    lsc2d_grid_convert(&src, &dst, width, height);
    return 0;
}
