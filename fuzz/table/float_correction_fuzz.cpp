// lsc2d_bicubic_correction on any plane and table, at any instruction set, against its plain form.
#include "support/hold_to.h"
#include "support/input.h"
#include "table/float_correction_plain.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    hold_to(input.take<uint8_t>());
    const int32_t width = input.number(), height = input.number();
    const int32_t step_x = input.number(), step_y = input.number(), row_length = input.number();
    const int64_t samples = elements_of(width, height);
    if (samples < 0)
        return 0;
    const bool refused = samples == 0 || step_x < 1 || step_y < 1 || row_length < 1;
    const int64_t before_last_row = refused ? 0 : elements_of((height - 1) / step_y + 3, row_length);
    if (before_last_row < 0)
        return 0;
    const auto src = input.buffer<uint16_t>(samples);
    // Just the nodes that are read: the rows may overlap, and the last ends with the last node.
    const auto table = input.buffer<uint16_t>(refused ? 0 : before_last_row + (width - 1) / step_x + 4);
    std::vector<uint16_t> dst(src.size(), 7), expected = dst;
    lsc2d_bicubic_correction(src.data(), dst.data(), width, height, table.data(), step_x, step_y, row_length);
    if (!refused)
        zerklsc::plain::bicubic_correction(
            {src.data(), expected.data(), width, height, table.data(), step_x, step_y, row_length});
    expect(dst == expected);
    return 0;
}
