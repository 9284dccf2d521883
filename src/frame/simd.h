// The vectors that kernels are written with, for the instruction set that the including file is compiled for:
// the compiler's vector types, and one function for each operation that they have no operator for.
//
// Include it in files of zerklsc_add_kernel() only: everything is in the namespace of the level. A vector is
// one register; ZERKLSC_VECTOR_BYTES set from outside makes it longer, 0 means that there is no vector unit.
#pragma once

#include <cstdint>
#include <cstring>

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

#if defined(__SSE2__)
#include <immintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

// ZERKLSC_X86(name) is the intrinsic of that name on whole vectors, where there is one.
#if ZERKLSC_VECTOR_BYTES == 64 && defined(__AVX512BW__)
#define ZERKLSC_X86(name) _mm512_##name
#define ZERKLSC_REGISTER __m512i
#elif ZERKLSC_VECTOR_BYTES == 32 && defined(__AVX2__)
#define ZERKLSC_X86(name) _mm256_##name
#define ZERKLSC_REGISTER __m256i
#elif ZERKLSC_VECTOR_BYTES == 16 && defined(__SSE2__)
#define ZERKLSC_X86(name) _mm_##name
#define ZERKLSC_REGISTER __m128i
#endif

#if ZERKLSC_VECTOR_BYTES > 0
namespace zerklsc::ZERKLSC_LEVEL {

constexpr int32_t lanes = ZERKLSC_VECTOR_BYTES / 2;

using Words = uint16_t __attribute__((vector_size(ZERKLSC_VECTOR_BYTES)));
using SignedWords = int16_t __attribute__((vector_size(ZERKLSC_VECTOR_BYTES)));
using Sums = int32_t __attribute__((vector_size(ZERKLSC_VECTOR_BYTES)));
using Pairs = uint32_t __attribute__((vector_size(ZERKLSC_VECTOR_BYTES)));

#define ZERKLSC_SIMD [[gnu::always_inline]] static inline

ZERKLSC_SIMD Words load(const uint16_t* p) {
    Words v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

ZERKLSC_SIMD void store(uint16_t* p, Words v) {
    std::memcpy(p, &v, sizeof v);
}

// The two words at a and the two at b in turn.
ZERKLSC_SIMD Words alternating(const uint16_t* a, const uint16_t* b) {
    uint32_t first;
    uint32_t second;
    std::memcpy(&first, a, sizeof first);
    std::memcpy(&second, b, sizeof second);
    Pairs odd{};
    for (int32_t i = 0; i < lanes / 2; ++i)
        odd[i] = i % 2 == 0 ? 0 : UINT32_MAX;
    return reinterpret_cast<Words>(((Pairs{} + first) & ~odd) | ((Pairs{} + second) & odd));
}

// The first `count` words of a, the rest of b.
ZERKLSC_SIMD Words first_lanes(int32_t count, Words a, Words b) {
    Words index{};
    for (int32_t i = 0; i < lanes; ++i)
        index[i] = static_cast<uint16_t>(i);
    return index < static_cast<uint16_t>(count) ? a : b;
}

// Fetches what will be read and written some lines further on.
ZERKLSC_SIMD void prefetch(const uint16_t* in, uint16_t* out) {
    constexpr uintptr_t ahead = 1024;
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(in) + ahead));
    __builtin_prefetch(reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(out) + ahead), 1);
}

// Operations on vectors of the same length. Words are read as signed, but by multiply_high and
// saturating_subtract.
//   pair_dot(a, b)             sums of the products of two neighbouring words, modulo 2^32
//   pack(a, b)                 sums as words, saturated; in each 16 bytes first those of a, then those of b
//   interleave_low, _high      words of a and b in turn, from the low or high half of each 16 bytes
//   lower, higher(a, b)        minimum, maximum
//   multiply_high(a, b)        upper halves of the products
//   saturating_subtract(a, b)  a - b, 0 where b is more
#if defined(ZERKLSC_X86)

#define ZERKLSC_OPERATION(result, name, operand, intrinsic)                                                  \
    ZERKLSC_SIMD result name(operand a, operand b) {                                                         \
        return reinterpret_cast<result>(ZERKLSC_X86(intrinsic)(reinterpret_cast<ZERKLSC_REGISTER>(a),        \
                                                               reinterpret_cast<ZERKLSC_REGISTER>(b)));      \
    }
ZERKLSC_OPERATION(Sums, pair_dot, Words, madd_epi16)
ZERKLSC_OPERATION(SignedWords, pack, Sums, packs_epi32)
ZERKLSC_OPERATION(Words, interleave_low, Words, unpacklo_epi16)
ZERKLSC_OPERATION(Words, interleave_high, Words, unpackhi_epi16)
ZERKLSC_OPERATION(SignedWords, lower, SignedWords, min_epi16)
ZERKLSC_OPERATION(SignedWords, higher, SignedWords, max_epi16)
ZERKLSC_OPERATION(Words, multiply_high, Words, mulhi_epu16)
ZERKLSC_OPERATION(Words, saturating_subtract, Words, subs_epu16)
#undef ZERKLSC_OPERATION

#elif ZERKLSC_VECTOR_BYTES == 16 && defined(__ARM_NEON)

ZERKLSC_SIMD int32x2_t neighbour_sums(int32x4_t v) {
    return vpadd_s32(vget_low_s32(v), vget_high_s32(v));
}

ZERKLSC_SIMD Sums pair_dot(Words a, Words b) {
    const auto x = reinterpret_cast<int16x8_t>(a);
    const auto y = reinterpret_cast<int16x8_t>(b);
    const int32x4_t low = vmull_s16(vget_low_s16(x), vget_low_s16(y));
    const int32x4_t high = vmull_s16(vget_high_s16(x), vget_high_s16(y));
    return reinterpret_cast<Sums>(vcombine_s32(neighbour_sums(low), neighbour_sums(high)));
}

ZERKLSC_SIMD SignedWords pack(Sums a, Sums b) {
    const int16x4_t low = vqmovn_s32(reinterpret_cast<int32x4_t>(a));
    const int16x4_t high = vqmovn_s32(reinterpret_cast<int32x4_t>(b));
    return reinterpret_cast<SignedWords>(vcombine_s16(low, high));
}

ZERKLSC_SIMD Words interleave_low(Words a, Words b) {
    return reinterpret_cast<Words>(
        vzipq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)).val[0]);
}

ZERKLSC_SIMD Words interleave_high(Words a, Words b) {
    return reinterpret_cast<Words>(
        vzipq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)).val[1]);
}

ZERKLSC_SIMD SignedWords lower(SignedWords a, SignedWords b) {
    return reinterpret_cast<SignedWords>(
        vminq_s16(reinterpret_cast<int16x8_t>(a), reinterpret_cast<int16x8_t>(b)));
}

ZERKLSC_SIMD SignedWords higher(SignedWords a, SignedWords b) {
    return reinterpret_cast<SignedWords>(
        vmaxq_s16(reinterpret_cast<int16x8_t>(a), reinterpret_cast<int16x8_t>(b)));
}

ZERKLSC_SIMD Words multiply_high(Words a, Words b) {
    const auto x = reinterpret_cast<uint16x8_t>(a);
    const auto y = reinterpret_cast<uint16x8_t>(b);
    const uint16x4_t low = vshrn_n_u32(vmull_u16(vget_low_u16(x), vget_low_u16(y)), 16);
    const uint16x4_t high = vshrn_n_u32(vmull_u16(vget_high_u16(x), vget_high_u16(y)), 16);
    return reinterpret_cast<Words>(vcombine_u16(low, high));
}

ZERKLSC_SIMD Words saturating_subtract(Words a, Words b) {
    return reinterpret_cast<Words>(
        vqsubq_u16(reinterpret_cast<uint16x8_t>(a), reinterpret_cast<uint16x8_t>(b)));
}

#else

ZERKLSC_SIMD Sums pair_dot(Words a, Words b) {
    Sums sums{};
    for (int32_t i = 0; i < lanes; ++i) {
        const int32_t product = static_cast<int16_t>(a[i]) * static_cast<int16_t>(b[i]);
        sums[i / 2] =
            static_cast<int32_t>(static_cast<uint32_t>(sums[i / 2]) + static_cast<uint32_t>(product));
    }
    return sums;
}

ZERKLSC_SIMD int16_t saturated(int32_t v) {
    return static_cast<int16_t>(v < INT16_MIN ? INT16_MIN : v > INT16_MAX ? INT16_MAX : v);
}

ZERKLSC_SIMD SignedWords pack(Sums a, Sums b) {
    SignedWords words{};
    for (int32_t i = 0; i < lanes / 2; ++i) {
        words[i / 4 * 8 + i % 4] = saturated(a[i]);
        words[i / 4 * 8 + i % 4 + 4] = saturated(b[i]);
    }
    return words;
}

ZERKLSC_SIMD Words interleave(Words a, Words b, int32_t half) {
    Words words{};
    for (int32_t i = 0; i < lanes / 2; ++i) {
        words[2 * i] = a[i / 4 * 8 + 4 * half + i % 4];
        words[2 * i + 1] = b[i / 4 * 8 + 4 * half + i % 4];
    }
    return words;
}

ZERKLSC_SIMD Words interleave_low(Words a, Words b) {
    return interleave(a, b, 0);
}

ZERKLSC_SIMD Words interleave_high(Words a, Words b) {
    return interleave(a, b, 1);
}

ZERKLSC_SIMD SignedWords lower(SignedWords a, SignedWords b) {
    return a < b ? a : b;
}

ZERKLSC_SIMD SignedWords higher(SignedWords a, SignedWords b) {
    return a > b ? a : b;
}

ZERKLSC_SIMD Words multiply_high(Words a, Words b) {
    Words words{};
    for (int32_t i = 0; i < lanes; ++i)
        words[i] = static_cast<uint16_t>((uint32_t{a[i]} * b[i]) >> 16);
    return words;
}

ZERKLSC_SIMD Words saturating_subtract(Words a, Words b) {
    return a > b ? a - b : Words{};
}

#endif

} // namespace zerklsc::ZERKLSC_LEVEL
#endif
