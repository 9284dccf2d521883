// Eight neighbouring nodes of a row, as the compiler's portable vectors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zerklsc {

inline constexpr int lane_count = 8;

// Arithmetic is on unsigned lanes, whose sums wrap; signed ones are for comparing and for shifting a sign in.
using Lanes = uint16_t __attribute__((vector_size(2 * lane_count)));
using SignedLanes = int16_t __attribute__((vector_size(2 * lane_count)));

// At any address.
inline Lanes load(const void* from) {
    Lanes v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

inline void store(void* to, Lanes v) {
    std::memcpy(to, &v, sizeof v);
}

// Calls block(c) for blocks of lanes that cover columns 0 .. width - 1, width >= lane_count. The last block
// overlaps the one before it, so that no block leaves the row: block(c) must not change what it reads.
template <class Block>
void for_each_block(ptrdiff_t width, Block block) {
    const ptrdiff_t last = width - lane_count;
    for (ptrdiff_t c = 0; c < last; c += lane_count)
        block(c);
    block(last);
}

// The first lane in every lane.
inline Lanes first_lane(Lanes x) {
    return __builtin_shufflevector(x, x, 0, 0, 0, 0, 0, 0, 0, 0);
}

// Each lane becomes the sum of itself and the lanes before it, `carry` the sum of all, in every lane.
inline Lanes sum_rightwards(Lanes x, Lanes& carry) {
    const Lanes zero = {};
    x += __builtin_shufflevector(zero, x, 0, 8, 9, 10, 11, 12, 13, 14);
    x += __builtin_shufflevector(zero, x, 0, 1, 8, 9, 10, 11, 12, 13);
    x += __builtin_shufflevector(zero, x, 0, 1, 2, 3, 8, 9, 10, 11);
    x += carry;
    carry = __builtin_shufflevector(x, x, 7, 7, 7, 7, 7, 7, 7, 7);
    return x;
}

// The same from the last lane to the first.
inline Lanes sum_leftwards(Lanes x, Lanes& carry) {
    const Lanes zero = {};
    x += __builtin_shufflevector(x, zero, 1, 2, 3, 4, 5, 6, 7, 8);
    x += __builtin_shufflevector(x, zero, 2, 3, 4, 5, 6, 7, 8, 9);
    x += __builtin_shufflevector(x, zero, 4, 5, 6, 7, 8, 9, 10, 11);
    x += carry;
    carry = first_lane(x);
    return x;
}

} // namespace zerklsc
