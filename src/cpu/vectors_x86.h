// The operations of vectors.h for x86: SSE2, AVX2 or AVX-512, as long as a vector is.
#pragma once

#if defined(__AVX2__)
#include <immintrin.h>
#else
#include <emmintrin.h> // a tenth of the other
#endif

// ZERKLSC_X86(name) is the intrinsic of that name on whole vectors.
#if ZERKLSC_VECTOR_BYTES == 64
#define ZERKLSC_X86(name) _mm512_##name
#define ZERKLSC_REGISTER __m512i
#elif ZERKLSC_VECTOR_BYTES == 32
#define ZERKLSC_X86(name) _mm256_##name
#define ZERKLSC_REGISTER __m256i
#else
#define ZERKLSC_X86(name) _mm_##name
#define ZERKLSC_REGISTER __m128i
#endif

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {

template <int lane>
ZERKLSC_SIMD Words every_lane(Words x) {
#if ZERKLSC_VECTOR_BYTES == 16
    return shuffle<lane, lane, lane, lane, lane, lane, lane, lane>(x, x);
#else
    return Words{} + x[lane];
#endif
}

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
#if ZERKLSC_VECTOR_BYTES > 16
constexpr bool multiplies_rounded_at_once = true;
ZERKLSC_OPERATION(Words, multiply_rounded, Words, mulhrs_epi16)
#else
constexpr bool multiplies_rounded_at_once = false;
#endif
#undef ZERKLSC_OPERATION

ZERKLSC_SIMD bool is_zero(Words a) {
    const auto v = reinterpret_cast<ZERKLSC_REGISTER>(a);
#if ZERKLSC_VECTOR_BYTES == 64
    return _mm512_test_epi64_mask(v, v) == 0;
#elif ZERKLSC_VECTOR_BYTES == 32
    return _mm256_testz_si256(v, v) != 0;
#else
    return _mm_movemask_epi8(_mm_cmpeq_epi8(v, __m128i{})) == 0xFFFF;
#endif
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET

#undef ZERKLSC_REGISTER
#undef ZERKLSC_X86
