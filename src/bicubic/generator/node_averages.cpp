#include "bicubic/generator/node_averages.h"

#include <algorithm>
#include <cstdio>

namespace zerklsc {

int32_t doubled_margin = 0;

namespace {

// Consecutive positions, some of which may lie outside the image by less than its size.
struct Span {
    int32_t begin;
    int32_t end;
};

Span block_around(int32_t centre) {
    const int32_t begin = centre - doubled_margin / 2;
    return {begin, begin + doubled_margin + 1};
}

// The reflection starts beside the edge sample: -1 is 1, and `size` is size - 2.
int32_t mirrored(int32_t position, int32_t size) {
    if (position < 0)
        return -position;
    return position < size ? position : 2 * (size - 1) - position;
}

// The channel comes by value: the sums cannot alias it then, and the loop vectorises.
void add_rows(Channel channel, const GeneratorGeometry& geometry, Span rows, int32_t sign, int32_t* columns) {
    const int32_t width = geometry.width;
    for (int32_t y = rows.begin; y < rows.end; ++y) {
        const uint16_t* const row = channel.row(mirrored(y, geometry.height));
        for (int32_t x = 0; x < width; ++x)
            columns[x] += sign * channel.level(row[2 * x]);
    }
}

// Column sums over `from` become column sums over `to`, which lies below it.
void move_block_row(const Channel& channel, const GeneratorGeometry& geometry, Span from, Span to,
                    int32_t* columns) {
    add_rows(channel, geometry, {from.begin, std::min(from.end, to.begin)}, -1, columns);
    add_rows(channel, geometry, {std::max(from.end, to.begin), to.end}, 1, columns);
}

void sum_leftward(const int32_t* columns, int32_t width, int64_t* leftward) {
    leftward[0] = 0;
    for (int32_t x = 0; x < width; ++x)
        leftward[x + 1] = leftward[x] + columns[x];
}

// The columns of `block` added up; those outside are found again inside.
int64_t mirrored_sum(const int64_t* leftward, int32_t width, Span block) {
    int64_t sum = leftward[std::min(block.end, width)] - leftward[std::max(block.begin, 0)];
    if (block.begin < 0)
        sum += leftward[1 - block.begin] - leftward[1];
    if (block.end > width)
        sum += leftward[width - 1] - leftward[2 * width - 1 - block.end];
    return sum;
}

} // namespace

// All samples are integers and every sum stays below 2^53, so that sums of integers are, to the bit, the sums
// of doubles in any order.
double block_averages(const Channel& channel, const GeneratorGeometry& geometry, const BlockSums& sums,
                      View<double> averages) {
    const double side = doubled_margin + 1;
    const double share = 1.0 / (side * side);
    int32_t* const columns = sums.columns.get();
    std::fill_n(columns, geometry.width, 0);
    Span rows = {-geometry.margin, -geometry.margin};
    double largest = 0.0;
    for (int32_t j = 0; j < geometry.grid_h; ++j) {
        const Span next = block_around(std::min(j * geometry.step, geometry.height - 1));
        move_block_row(channel, geometry, rows, next, columns);
        rows = next;
        sum_leftward(columns, geometry.width, sums.leftward.get());
        for (int32_t i = 0; i < geometry.grid_w; ++i) {
            const Span block = block_around(std::min(i * geometry.step, geometry.width - 1));
            const int64_t sum = mirrored_sum(sums.leftward.get(), geometry.width, block);
            averages.at(i, j) = static_cast<double>(sum) * share;
            largest = std::max(largest, averages.at(i, j));
        }
    }
    return largest;
}

void extend_last_nodes(const GeneratorGeometry& geometry, View<double> averages) {
    const int32_t rest = geometry.width % geometry.step;
    const int32_t measured_at = rest == 0 ? geometry.step - 1 : rest - 1;
    // The last sample is a node itself: there is nowhere to go, or no distance to measure a slope over.
    if (measured_at == 0)
        return;
    const double k = static_cast<double>(geometry.step) / measured_at;
    for (int32_t j = 0; j < averages.height; ++j) {
        double* const last = averages.row(j) + averages.width - 1;
        const double previous = last[-1];
        *last = (*last - previous) * k + previous;
        if (!(*last > 0.0))
            std::puts("Warning:raw image data maybe wrong ");
    }
}

} // namespace zerklsc
