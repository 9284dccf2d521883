// The sums of pairs of columns, on vectors of 32-bit lanes: a pair fills a lane, its first sample the low
// half.
#include "sampling/pair_sum.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

namespace zerklsc::ZERKLSC_LEVEL {
namespace {

typedef uint32_t Lanes4 __attribute__((vector_size(16)));
typedef uint32_t Lanes8 __attribute__((vector_size(32)));
typedef uint32_t Lanes16 __attribute__((vector_size(64)));

template <class Lanes>
constexpr int32_t lanes_of = sizeof(Lanes) / sizeof(uint32_t);

template <class Lanes>
Lanes load(const uint16_t* from) {
    Lanes v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

// All bits of the last `count` lanes.
template <class Lanes>
Lanes last_lanes(int32_t count) {
    Lanes v;
    for (int32_t i = 0; i < lanes_of<Lanes>; ++i)
        v[i] = i < lanes_of<Lanes> - count ? 0u : 0xFFFFFFFFu;
    return v;
}

// At least one whole vector of pairs per row. What is left over is taken from a vector that ends with the
// last pair, with the lanes that were added already blanked out.
template <class Lanes>
void add_rows(const uint16_t* first, ptrdiff_t stride, int32_t pairs, int32_t rows, uint64_t sums[2]) {
    constexpr int32_t lanes = lanes_of<Lanes>;
    const int32_t whole = pairs / lanes * lanes;
    const Lanes rest = last_lanes<Lanes>(pairs - whole);
    Lanes low{}, high{};
    for (int32_t y = 0; y < rows; ++y) {
        const uint16_t* const row = first + y * stride;
        for (int32_t x = 0; x < whole; x += lanes) {
            const Lanes v = load<Lanes>(row + 2 * x);
            low += v & 0xFFFFu;
            high += v >> 16;
        }
        const Lanes v = load<Lanes>(row + 2 * (pairs - lanes)) & rest;
        low += v & 0xFFFFu;
        high += v >> 16;
    }
    for (int32_t i = 0; i < lanes; ++i) {
        sums[0] += low[i];
        sums[1] += high[i];
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
        return add_rows<Lanes16>(first, stride, pairs, rows, sums);
#endif
#if defined(__AVX2__)
    if (pairs >= 8)
        return add_rows<Lanes8>(first, stride, pairs, rows, sums);
#endif
    if (pairs >= 4)
        return add_rows<Lanes4>(first, stride, pairs, rows, sums);
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

} // namespace zerklsc::ZERKLSC_LEVEL
