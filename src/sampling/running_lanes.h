// Sums of the lanes of vectors, on the way to running sums.
#pragma once

#include <cstdint>
#include <utility>

#include "cpu/vectors.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

template <class V>
using Lanes = std::make_integer_sequence<int, lanes<V>>;

// The lanes moved up by `by`, with zeros below them.
template <int by, class V, int... lane>
ZERKLSC_SIMD V moved_up(V v, std::integer_sequence<int, lane...>) {
    return shuffle<(lane < by ? lane : lanes<V> + lane - by)...>(V{}, v);
}

template <int interleave, class V, int... lane>
ZERKLSC_SIMD V highest(V v, std::integer_sequence<int, lane...>) {
    return shuffle<(lanes<V> - interleave + lane % interleave)...>(v, v);
}

// The highest `interleave` lanes, over and over.
template <int interleave, class V>
ZERKLSC_SIMD V highest(V v) {
    return highest<interleave>(v, Lanes<V>{});
}

// Every lane plus all those below it at multiples of `interleave`.
template <int interleave, class V>
ZERKLSC_SIMD V running(V v) {
    if constexpr (interleave < lanes<V>)
        return running<2 * interleave>(v + moved_up<interleave>(v, Lanes<V>{}));
    else
        return v;
}

} // namespace
} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
