// The vectors that kernels are written with, for the instruction set that the including file is compiled for:
// the compiler's vector types, and one function for each operation that they have no operator for.
//
// Include it in files of zerklsc_add_kernel() only: everything is in the namespace of the instruction set.
#pragma once

#include <cstdint>

// The bytes of a register; 0 where there is no vector unit that this file knows. Set from outside it makes
// vectors longer than a register.
#if !defined(ZERKLSC_VECTOR_BYTES)
#if defined(__AVX512BW__)
#define ZERKLSC_VECTOR_BYTES 64
#elif defined(__AVX2__)
#define ZERKLSC_VECTOR_BYTES 32
#elif defined(__SSE2__) || defined(__ARM_NEON)
#define ZERKLSC_VECTOR_BYTES 16
#else
#define ZERKLSC_VECTOR_BYTES 0
#endif
#endif

// How vectors longer than a register are handed on does not matter: every function here is inlined.
#pragma GCC diagnostic ignored "-Wpsabi"

#define ZERKLSC_SIMD [[gnu::always_inline]] static inline

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

// Without a vector unit the compiler takes vectors apart; short ones are then as good as any.
constexpr int32_t vector_bytes = ZERKLSC_VECTOR_BYTES > 0 ? ZERKLSC_VECTOR_BYTES : 16;

template <class T, int32_t bytes>
struct VectorOf {
    typedef T Type __attribute__((vector_size(bytes)));
};

// Elements of type T, as many as fill a register unless the bytes are named.
template <class T, int32_t bytes = vector_bytes>
using Vector = typename VectorOf<T, bytes>::Type;

template <class V>
constexpr int32_t lanes = int32_t{sizeof(V)} / int32_t{sizeof(V{}[0])};

// As many elements of another type.
template <class T, class V>
using As = Vector<T, lanes<V> * int32_t{sizeof(T)}>;

using Words = Vector<uint16_t>;
using SignedWords = Vector<int16_t>;
using Sums = Vector<int32_t>;

// At any address.
template <class V>
ZERKLSC_SIMD V load(const void* from) {
    V v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

template <class V>
ZERKLSC_SIMD void store(void* to, V v) {
    __builtin_memcpy(to, &v, sizeof v);
}

// A lane of the result is the lane of that index in a, b.
template <int... index, class V>
ZERKLSC_SIMD V shuffle(V a, V b) {
#if defined(__clang__)
    return __builtin_shufflevector(a, b, index...);
#else
    return __builtin_shuffle(a, b, V{index...});
#endif
}

// The T at an address in every lane of its size.
template <class T>
ZERKLSC_SIMD Words repeated(const void* from) {
    return reinterpret_cast<Words>(Vector<T>{} + load<T>(from));
}

// The first `count` words of a, the rest of b.
ZERKLSC_SIMD Words first_lanes(int32_t count, Words a, Words b) {
    Words index{};
    for (int32_t i = 0; i < lanes<Words>; ++i)
        index[i] = static_cast<uint16_t>(i);
    return index < static_cast<uint16_t>(count) ? a : b;
}

// Fetches what lies so many bytes further on, inside the buffers or beyond: in will be read, out written.
// `locality` is that of __builtin_prefetch(): 3 is the first cache, 2 the second.
template <int locality>
ZERKLSC_SIMD void prefetch(const uint16_t* in, uint16_t* out, uintptr_t ahead) {
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(in) + ahead), 0, locality);
    __builtin_prefetch(reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(out) + ahead), 1, locality);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET

// Operations that each family has instructions of its own for. Words are read as signed, but by multiply_high
// and saturating_subtract.
//   every_lane<i>(a)           lane i of the words a in every lane
//   interleave_low, _high      words of a and b in turn, from the low or high half of each 16 bytes
//   lower, higher(a, b)        minimum, maximum
//   saturating_subtract(a, b)  a - b, 0 where b is more
//   is_zero(a)                 whether no bit is set
// All but NEON, which has better for the same purpose, also have
//   pair_dot(a, b)             sums of the products of two neighbouring words, modulo 2^32
//   pack(a, b)                 sums as words, saturated; in each 16 bytes first those of a, then those of b
//   multiply_high(a, b)        upper halves of the products
//   multiply_rounded(a, b)     products by 2^15, rounded half up; words below 2^15. Only where it is one
//                              instruction, as `multiplies_rounded_at_once` says
#if defined(__SSE2__) && (ZERKLSC_VECTOR_BYTES < 32 || defined(__AVX2__))                                    \
    && (ZERKLSC_VECTOR_BYTES < 64 || defined(__AVX512BW__))
#include "cpu/vectors_x86.h"
#elif defined(__ARM_NEON) && ZERKLSC_VECTOR_BYTES == 16
#include "cpu/vectors_arm.h"
#else
#include "cpu/vectors_generic.h"
#endif
