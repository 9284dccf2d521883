// Rows of levels: whether any is too high, and their sums column by column.
#include "bicubic/generator/level_kernels.h"
#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

constexpr int32_t lower_of(int32_t a, int32_t b) {
    return a < b ? a : b;
}

} // namespace

bool any_above(const uint16_t* samples, int32_t count, const uint16_t limits[2]) {
    const Words limit = repeated<uint32_t>(limits);
    Words excess{};
    int32_t x = 0;
    for (; x + lanes<Words> <= count; x += lanes<Words>)
        excess |= saturating_subtract(load<Words>(samples + x), limit);
    bool any = !is_zero(excess);
    for (; x < count; ++x)
        any |= samples[x] > limits[x % 2];
    return any;
}

void add_levels(int32_t* __restrict columns, const uint16_t* __restrict samples, int32_t count, int32_t black,
                int32_t white) {
    for (int32_t x = 0; x < count; ++x)
        columns[x] += lower_of(samples[2 * x] - black, white);
}

void remove_levels(int32_t* __restrict columns, const uint16_t* __restrict samples, int32_t count,
                   int32_t black, int32_t white) {
    for (int32_t x = 0; x < count; ++x)
        columns[x] -= lower_of(samples[2 * x] - black, white);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
