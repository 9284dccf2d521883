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
using OneFloat = Vector<float, sizeof(float)>;

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

// Corrects neighbouring columns; the row sums are read once for all rows. Floor is truncation where no gain
// is negative: without `floors` it is that, and some lane of `signs` is below 0 where a gain was.
//
// Cubic weights add up to less than 1.3 in magnitude, so a gain stays below 1.3 * 1.3 * 64 and its product
// with a sample below 2^23: it fits 32 bits whatever its sign, and as an integer it is an exact float.
template <bool floors, class V, int32_t rows>
ZERKLSC_SIMD void correct_columns(const Rows<rows>& job, int32_t x, As<int32_t, V>& signs) {
    using Integers = As<int32_t, V>;
    const V s0 = load<V>(job.sums[0] + x);
    const V s1 = load<V>(job.sums[1] + x);
    const V s2 = load<V>(job.sums[2] + x);
    const V s3 = load<V>(job.sums[3] + x);
    for (int32_t y = 0; y < rows; ++y) {
        const float* const w = job.weights[y];
        const V gain = w[0] * s0 + w[1] * s1 + w[2] * s2 + w[3] * s3;
        signs |= reinterpret_cast<Integers>(gain);
        const auto samples = load<As<uint16_t, V>>(job.src + y * job.stride + x);
        const V value = __builtin_convertvector(__builtin_convertvector(samples, Integers), V) * gain + 0.5f;
        Integers corrected = __builtin_convertvector(value, Integers);
        if constexpr (floors)
            corrected += __builtin_convertvector(corrected, V) > value;
        store(job.dst + y * job.stride + x, __builtin_convertvector(corrected, As<uint16_t, V>));
    }
}

// Says whether no gain was negative. The last columns are corrected with some before them once more.
template <bool floors, class V, int32_t rows>
bool correct_all_columns(const Rows<rows> job) {
    const int32_t last = job.count - lanes<V>;
    As<int32_t, V> signs{};
    for (int32_t x = 0; x < job.count; x += lanes<V>)
        correct_columns<floors, V>(job, x < last ? x : last, signs);
    int32_t sign = 0;
    for (int32_t i = 0; i < lanes<V>; ++i)
        sign |= signs[i];
    return sign >= 0;
}

// Overshoot makes gains negative beside steep drops only: such a row is done twice.
template <class V>
void correct_row(const RowGroup& group, int32_t row) {
    const Rows<1> job(group, row);
    if (!correct_all_columns<false, V>(job))
        correct_all_columns<true, V>(job);
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
    const bool is_wide = group.count >= lanes<Floats>;
    if (is_wide && group.rows == most_rows && correct_all_columns<false, Floats>(Rows<most_rows>(group, 0)))
        return;
    for (int32_t y = 0; y < group.rows; ++y)
        is_wide ? correct_row<Floats>(group, y) : correct_row<OneFloat>(group, y);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
