// The inner loops of lsc2d_bicubic_correction().
#include "table/float_correction.h"

#include "cpu/vectors.h"
#include "frame/gain.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

// Samples fill a register of 16 bytes. 32-bit ARM has no vectors of floats that keep the smallest of them.
#if defined(__arm__)
using Floats = Vector<float, sizeof(float)>;
#else
using Floats = Vector<float, (vector_bytes > 32 ? vector_bytes : 32)>;
#endif
using Integers = As<int32_t, Floats>;
using Samples = As<uint16_t, Floats>;

// Vectors of columns that go together, where there are registers for two.
constexpr int32_t together = vector_bytes > 16 ? 2 : 1;
constexpr int32_t columns_at_once = together * lanes<Floats>;

// What GCC would take vectors of AVX2 and AVX-512 apart for. It warns of the intrinsics of AVX-512 that have
// no mask: their headers read a variable that they never set.
#if defined(__AVX512BW__)
constexpr bool floors_at_once = true;
constexpr __mmask16 every = 0xFFFF;
#else
constexpr bool floors_at_once = false;
#endif

ZERKLSC_SIMD Floats load_samples(const uint16_t* from) {
    const auto samples = load<Samples>(from);
#if defined(__AVX512BW__)
    const __m512i wide = _mm512_maskz_cvtepu16_epi32(every, reinterpret_cast<__m256i>(samples));
#elif defined(__AVX2__)
    const __m256i wide = _mm256_cvtepu16_epi32(reinterpret_cast<__m128i>(samples));
#else
    const auto wide = __builtin_convertvector(samples, Integers);
#endif
    return __builtin_convertvector(reinterpret_cast<Integers>(wide), Floats);
}

// Stores the low 16 bits.
ZERKLSC_SIMD void store_samples(uint16_t* to, const Integers (&values)[together]) {
#if defined(__AVX512BW__)
    for (int32_t v = 0; v < together; ++v)
        store(to + v * lanes<Floats>,
              _mm512_maskz_cvtepi32_epi16(every, reinterpret_cast<__m512i>(values[v])));
#elif defined(__AVX2__)
    const auto low = [&](int32_t v) { return reinterpret_cast<__m256i>(values[v] & 0xFFFF); };
    store(to, _mm256_permute4x64_epi64(_mm256_packus_epi32(low(0), low(1)), 0xD8));
#else
    store(to, __builtin_convertvector(values[0], Samples));
#endif
}

// Floor is truncation where nothing is negative: without `floors` it may be that.
template <bool floors>
ZERKLSC_SIMD Integers whole(const Floats& value) {
#if defined(__AVX512BW__)
    return reinterpret_cast<Integers>(
        _mm512_maskz_cvt_roundps_epi32(every, value, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC));
#else
    auto result = __builtin_convertvector(value, Integers);
    if constexpr (floors)
        result += __builtin_convertvector(result, Floats) > value;
    return result;
#endif
}

// `rows` rows of a group, in variables of their own: the compiler cannot tell that the samples written are
// no part of the group. The weights take the unit of the gains in: it is a power of two, which rounds
// nothing.
template <int32_t rows>
struct Rows {
    const uint16_t* src;
    uint16_t* dst;
    ptrdiff_t stride;
    int32_t count;
    const float* sums[4];
    float weights[rows][4];

    Rows(const RowGroup& group, int32_t first)
        : src(group.src + first * group.stride), dst(group.dst + first * group.stride), stride(group.stride),
          count(group.count) {
        for (int32_t i = 0; i < 4; ++i) {
            sums[i] = group.sums[i];
            for (int32_t y = 0; y < rows; ++y)
                weights[y][i] = gain_step * group.weights[first + y][i];
        }
    }
};

// Corrects neighbouring columns; the row sums are read once for all rows. Some lane of `signs` is below 0
// where a gain was that had to be rounded down.
//
// Cubic weights add up to less than 1.3 in magnitude, so a gain stays below 1.3 * 1.3 * 64 and its product
// with a sample below 2^23: it fits 32 bits whatever its sign, and as an integer it is an exact float.
template <bool floors, int32_t rows>
ZERKLSC_SIMD void correct_columns(const Rows<rows>& job, int32_t x, Integers& signs) {
    Floats sums[together][4];
    for (int32_t v = 0; v < together; ++v)
        for (int32_t i = 0; i < 4; ++i)
            sums[v][i] = load<Floats>(job.sums[i] + x + v * lanes<Floats>);
    // The next group: four rows are more streams than processors follow by themselves.
    const auto ahead = static_cast<uintptr_t>(rows * job.stride) * sizeof(uint16_t);
    for (int32_t y = 0; y < rows; ++y) {
        const float* const w = job.weights[y];
        const ptrdiff_t start = y * job.stride + x;
        Integers values[together];
        if constexpr (rows == most_rows && together > 1)
            prefetch<2>(job.src + start, job.dst + start, ahead);
        for (int32_t v = 0; v < together; ++v) {
            const Floats* const s = sums[v];
            const Floats gain = w[0] * s[0] + w[1] * s[1] + w[2] * s[2] + w[3] * s[3];
            if constexpr (!floors_at_once)
                signs |= reinterpret_cast<Integers>(gain);
            values[v] = whole<floors>(load_samples(job.src + start + v * lanes<Floats>) * gain + 0.5f);
        }
        store_samples(job.dst + start, values);
    }
}

// Says whether no gain was negative. The last columns are corrected with some before them once more.
template <bool floors, int32_t rows>
bool correct_all_columns(const Rows<rows> job) {
    const int32_t last = job.count - columns_at_once;
    Integers signs{};
    for (int32_t x = 0; x < job.count; x += columns_at_once)
        correct_columns<floors>(job, x < last ? x : last, signs);
    int32_t sign = 0;
    for (int32_t i = 0; i < lanes<Floats>; ++i)
        sign |= signs[i];
    return sign >= 0;
}

// Rows narrower than the columns that go together, one by one in a place that is wide enough.
void correct_narrow_rows(const RowGroup& group) {
    const auto count = static_cast<size_t>(group.count);
    float sums[4][columns_at_once] = {};
    uint16_t in[columns_at_once] = {}, out[columns_at_once];
    RowGroup wide{in, out, 0, columns_at_once, 1, {sums[0], sums[1], sums[2], sums[3]}, {}};
    for (int32_t i = 0; i < 4; ++i)
        __builtin_memcpy(sums[i], group.sums[i], count * sizeof(float));
    for (int32_t y = 0; y < group.rows; ++y) {
        __builtin_memcpy(wide.weights[0], group.weights[y], sizeof wide.weights[0]);
        __builtin_memcpy(in, group.src + y * group.stride, count * sizeof(uint16_t));
        correct_rows(wide);
        __builtin_memcpy(group.dst + y * group.stride, out, count * sizeof(uint16_t));
    }
}

} // namespace

void sum_nodes(const ColumnTaps& columns, const uint16_t* nodes, float* __restrict sums) {
    const float* const* const c = columns.taps;
    int32_t left = columns.step - columns.phase;
    for (int32_t x = 0; x < columns.count; ++nodes) {
        const float n0 = nodes[0], n1 = nodes[1], n2 = nodes[2], n3 = nodes[3];
        const int32_t stop = left < columns.count - x ? x + left : columns.count;
        for (; x < stop; ++x)
            sums[x] = c[0][x] * n0 + c[1][x] * n1 + c[2][x] * n2 + c[3][x] * n3;
        left = columns.step;
    }
}

// Where a gain of the group is negative its rows go one by one, as only some have to be done again.
void correct_rows(const RowGroup& group) {
    if (group.count < columns_at_once)
        return correct_narrow_rows(group);
    if (group.rows == most_rows && correct_all_columns<false>(Rows<most_rows>(group, 0)))
        return;
    for (int32_t y = 0; y < group.rows; ++y) {
        const Rows<1> row(group, y);
        if (!correct_all_columns<false>(row))
            correct_all_columns<true>(row);
    }
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
