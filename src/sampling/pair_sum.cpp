// The sums of pairs of columns, on vectors of 32-bit lanes: a pair fills a lane, its first sample the half
// that stands first in memory.
#include "sampling/sum_kernels.h"

#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// All bits of the last `count` lanes.
template <class Lanes>
Lanes last_lanes(int32_t count) {
    Lanes v;
    for (int32_t i = 0; i < lanes<Lanes>; ++i)
        v[i] = i < lanes<Lanes> - count ? 0u : 0xFFFFFFFFu;
    return v;
}

// At least one whole vector of pairs per row. What is left over is taken from a vector that ends with the
// last pair, with the lanes that were added already blanked out.
template <class Lanes>
void add_rows(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]) {
    constexpr int32_t lane_count = lanes<Lanes>;
    const int32_t whole = pairs / lane_count * lane_count;
    const Lanes rest = last_lanes<Lanes>(pairs - whole);
    Lanes low{}, high{};
    for (int32_t y = 0; y < rows; ++y) {
        const uint16_t* const row = first + y * stride;
        for (int32_t x = 0; x < whole; x += lane_count) {
            const Lanes v = load<Lanes>(row + 2 * x);
            low += v & 0xFFFFu;
            high += v >> 16;
        }
        const Lanes v = load<Lanes>(row + 2 * (pairs - lane_count)) & rest;
        low += v & 0xFFFFu;
        high += v >> 16;
    }
    constexpr int32_t first_half = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? 0 : 1;
    for (int32_t i = 0; i < lane_count; ++i) {
        sums[first_half] += low[i];
        sums[1 - first_half] += high[i];
    }
}

void add_few(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]) {
    for (int32_t y = 0; y < rows; ++y) {
        const uint16_t* const row = first + y * stride;
        for (int32_t x = 0; x < pairs; ++x) {
            sums[0] += row[2 * x];
            sums[1] += row[2 * x + 1];
        }
    }
}

// With the widest vectors of this instruction set that a row fills.
void add_portion(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]) {
#if defined(__AVX512F__)
    if (pairs >= 16)
        return add_rows<Vector<uint32_t, 64>>(first, stride, pairs, rows, sums);
#endif
#if defined(__AVX2__)
    if (pairs >= 8)
        return add_rows<Vector<uint32_t, 32>>(first, stride, pairs, rows, sums);
#endif
    if (pairs >= 4)
        return add_rows<Vector<uint32_t, 16>>(first, stride, pairs, rows, sums);
    add_few(first, stride, pairs, rows, sums);
}

} // namespace

// A lane of the narrowest vector takes pairs / 4 + 1 samples of a row, which bounds the rows that it can
// hold.
void add_pairs(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]) {
    const int32_t portion = 65536 / (pairs / 4 + 1);
    for (int32_t y = 0; y < rows; y += portion)
        add_portion(first + y * stride, stride, pairs, rows - y < portion ? rows - y : portion, sums);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
