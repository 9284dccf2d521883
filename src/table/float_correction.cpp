// lsc2d_bicubic_correction
#include "table/float_correction.h"

#include <algorithm>

#include "frame/scratch.h"
#include "table/lookup.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// Row sums depend on the column and the table row only, so those of four table rows serve a whole row of
// cells, and the next row of cells needs one more. A column takes four weights and four row sums.
constexpr int32_t floats_per_column = 8;

// The widest strip that needs no memory from the heap.
constexpr int32_t narrow = 256;

ColumnTaps column_taps(const FloatCorrection& job, int32_t first, int32_t count, float* storage) {
    const ptrdiff_t n = count;
    float* const taps[4] = {storage, storage + n, storage + 2 * n, storage + 3 * n};
    for (int32_t i = 0; i < count; ++i) {
        const Taps at = node_taps(first + i, job.step_x).taps;
        taps[0][i] = at.c0;
        taps[1][i] = at.c1;
        taps[2][i] = at.c2;
        taps[3][i] = at.c3;
    }
    return {count, job.step_x, first % job.step_x, {taps[0], taps[1], taps[2], taps[3]}};
}

// The rows from row `first` on that lie between the same table rows, at most as many as go together.
void weigh_rows(const FloatCorrection& job, int32_t first, RowGroup& group) {
    const int32_t left = job.step_y - first % job.step_y;
    group.rows = std::min({most_rows, left, job.height - first});
    for (int32_t y = 0; y < group.rows; ++y) {
        const Taps taps = node_taps(first + y, job.step_y).taps;
        const float weights[4] = {taps.c0, taps.c1, taps.c2, taps.c3};
        std::copy_n(weights, 4, group.weights[y]);
    }
}

// Corrects `count` columns from column `first` on over the whole height.
void correct_strip(const FloatCorrection& job, int32_t first, int32_t count, float* storage) {
    const auto sum_nodes = ZERKLSC_KERNEL(sum_nodes);
    const auto correct_rows = ZERKLSC_KERNEL(correct_rows);
    const ColumnTaps columns = column_taps(job, first, count, storage);
    // The row sums of table row r stand in place r % 4.
    const auto sums_of = [&](int64_t r) { return storage + (4 + r % 4) * count; };
    RowGroup group;
    group.stride = job.width;
    group.count = count;
    int64_t next = 0;
    for (int32_t j = 0; j < job.height; j += group.rows) {
        const int64_t cell = j / job.step_y;
        for (; next < cell + 4; ++next)
            sum_nodes(columns, job.table + next * job.row_length + first / job.step_x, sums_of(next));
        for (int32_t i = 0; i < 4; ++i)
            group.sums[i] = sums_of(cell + i);
        const ptrdiff_t start = ptrdiff_t{j} * job.width + first;
        group.src = job.src + start;
        group.dst = job.dst + start;
        weigh_rows(job, j, group);
        correct_rows(group);
    }
}

} // namespace
} // namespace zerklsc

void lsc2d_bicubic_correction(const uint16_t* src, uint16_t* dst, int32_t width, int32_t height,
                              const uint16_t* table, int32_t step_x, int32_t step_y, int32_t row_length) {
    using namespace zerklsc;
    if (step_x < 1 || step_y < 1 || row_length < 1 || width < 1 || height < 1)
        return;
    const FloatCorrection job{src, dst, width, height, table, step_x, step_y, row_length};
    const Scratch<float> wide = width > narrow ? allocate<float>(width, floats_per_column) : nullptr;
    if (wide != nullptr)
        return correct_strip(job, 0, width, wide.get());
    // A plane too wide for the memory there is goes strip by strip.
    float storage[floats_per_column * narrow];
    for (int32_t x = 0; x < width; x += std::min(narrow, width - x))
        correct_strip(job, x, std::min(narrow, width - x), storage);
}
