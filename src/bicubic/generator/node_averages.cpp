// The blocks of one row of nodes cover the same rows of the plane, and mostly those of the row of nodes
// before. So the columns are added up over these rows once, each time from what they were before; the sums
// over the columns left of each column then give any block by one subtraction.
#include "bicubic/generator/node_averages.h"

#include <algorithm>

#include "bicubic/generator/level_kernels.h"

namespace zerklsc {
namespace {

// Consecutive rows or columns, some of which may lie outside the plane by less than its size.
struct Span {
    int32_t begin;
    int32_t end;
};

Span block_around(int32_t centre, int32_t margin) {
    return {centre - margin, centre + margin + 1};
}

// The reflection starts beside the edge sample: -1 is 1, and `size` is size - 2.
int32_t mirrored(int32_t position, int32_t size) {
    if (position < 0)
        return -position;
    return position < size ? position : 2 * (size - 1) - position;
}

// Calls work(columns, samples of the row, ...) for each of the rows.
void with_rows(const ColourPlane& plane, const GeneratorGeometry& geometry, Span rows, AddLevels* work,
               int32_t* columns) {
    for (int32_t y = rows.begin; y < rows.end; ++y)
        work(columns, plane.row(mirrored(y, geometry.height)), geometry.width, plane.black, white_level);
}

// Column sums over the rows `from` become column sums over the rows `to`, which lie below. Rows that are to
// go are read once more: where they are most of them, the sums start anew.
void move_down(const ColourPlane& plane, const GeneratorGeometry& geometry, Span from, Span to,
               int32_t* columns) {
    if (to.begin - from.begin > (from.end - from.begin) / 2) {
        std::fill_n(columns, geometry.width, 0);
        from = {to.begin, to.begin};
    }
    with_rows(plane, geometry, {from.begin, to.begin}, ZERKLSC_KERNEL(remove_levels), columns);
    with_rows(plane, geometry, {from.end, to.end}, ZERKLSC_KERNEL(add_levels), columns);
}

void sum_left_of_each(const int32_t* columns, int32_t width, int64_t* left_of) {
    left_of[0] = 0;
    for (int32_t x = 0; x < width; ++x)
        left_of[x + 1] = left_of[x] + columns[x];
}

// The columns of `block` added up; those outside are found again inside.
int64_t mirrored_sum(const int64_t* left_of, int32_t width, Span block) {
    int64_t sum = left_of[std::min(block.end, width)] - left_of[std::max(block.begin, 0)];
    if (block.begin < 0)
        sum += left_of[1 - block.begin] - left_of[1];
    if (block.end > width)
        sum += left_of[width - 1] - left_of[2 * width - 1 - block.end];
    return sum;
}

} // namespace

bool allocate_sums(const GeneratorGeometry& geometry, BlockSums& sums) {
    sums.columns = allocate<int32_t>(geometry.width, 1);
    sums.left_of = allocate<int64_t>(geometry.width + 1, 1);
    return sums.columns && sums.left_of;
}

// All samples are integers and every sum stays below 2^53, so that sums of integers are, to the bit, the sums
// of doubles in any order.
double measure_nodes(const ColourPlane& plane, const GeneratorGeometry& geometry, const BlockSums& sums,
                     View<double> averages) {
    const double side = 2 * geometry.margin + 1;
    const double share = 1.0 / (side * side);
    int32_t* const columns = sums.columns.get();
    std::fill_n(columns, geometry.width, 0);
    Span rows = {-geometry.margin, -geometry.margin};
    double largest = 0.0;
    for (int32_t j = 0; j < geometry.grid_h; ++j) {
        const Span next = block_around(std::min(j * geometry.step, geometry.height - 1), geometry.margin);
        move_down(plane, geometry, rows, next, columns);
        rows = next;
        sum_left_of_each(columns, geometry.width, sums.left_of.get());
        for (int32_t i = 0; i < geometry.grid_w; ++i) {
            const Span block = block_around(std::min(i * geometry.step, geometry.width - 1), geometry.margin);
            const int64_t sum = mirrored_sum(sums.left_of.get(), geometry.width, block);
            averages.at(i, j) = static_cast<double>(sum) * share;
            largest = std::max(largest, averages.at(i, j));
        }
    }
    return largest;
}

int32_t extend_last_nodes(const GeneratorGeometry& geometry, View<double> averages) {
    const int32_t rest = geometry.width % geometry.step;
    // How far the last sample stands from the node before it.
    const int32_t distance = rest == 0 ? geometry.step - 1 : rest - 1;
    // The last sample is a node itself: there is nowhere to go, or no distance to measure a slope over.
    if (distance == 0)
        return 0;
    const double k = static_cast<double>(geometry.step) / distance;
    int32_t not_above_zero = 0;
    for (int32_t j = 0; j < averages.height; ++j) {
        double* const last = averages.row(j) + averages.width - 1;
        const double previous = last[-1];
        *last = (*last - previous) * k + previous;
        if (!(*last > 0.0))
            ++not_above_zero;
    }
    return not_above_zero;
}

} // namespace zerklsc
