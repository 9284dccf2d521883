// Running sums of a row, and the averages over windows whose rows are spans between them.
#include "sampling/running_lanes.h"
#include "sampling/sum_kernels.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

using Narrow = Vector<uint32_t>;
using Wide = Vector<uint64_t>;

template <int interleave>
ZERKLSC_SIMD void run_along(const uint16_t* samples, int32_t count, uint32_t* sums) {
    using V = Narrow;
    for (int32_t i = 0; i < interleave; ++i)
        sums[i] = 0;
    sums += interleave;
    int32_t i = 0;
    V carry{};
    for (; i + lanes<V> <= count; i += lanes<V>) {
        const V sum =
            running<interleave>(__builtin_convertvector(load<As<uint16_t, V>>(samples + i), V)) + carry;
        store(sums + i, sum);
        carry = highest<interleave>(sum);
    }
    for (; i < count; ++i)
        sums[i] = sums[i - interleave] + samples[i];
}

// How sums become floats, rounded once.

struct FromNarrow {
    [[gnu::always_inline]] static As<float, Narrow> floats(Narrow sums) {
        return __builtin_convertvector(sums, As<float, Narrow>);
    }
};

// Below AVX-512, x86 converts signed numbers only.
struct FromSmall {
    [[gnu::always_inline]] static As<float, Narrow> floats(Narrow sums) {
        return __builtin_convertvector(reinterpret_cast<Vector<int32_t>>(sums), As<float, Narrow>);
    }
};

// Sums below 2^52 become the mantissas of doubles above 2^52, which makes doubles of them without rounding.
struct FromWide {
    [[gnu::always_inline]] static As<float, Wide> floats(Wide sums) {
        const auto shifted = reinterpret_cast<As<double, Wide>>(sums | 0x4330000000000000u);
        return __builtin_convertvector(shifted - 0x1p52, As<float, Wide>);
    }
};

// `blocks` vectors of averages, side by side.
template <int32_t blocks, class From, class V, class Sum>
ZERKLSC_SIMD void average_block(const SpanRow<Sum>* rows, int32_t row_count, int32_t x, float scale,
                                uint16_t* dst) {
    V sums[blocks] = {};
    for (int32_t k = 0; k < row_count; ++k)
        for (int32_t b = 0; b < blocks; ++b)
            sums[b] += load<V>(rows[k].end + x + b * lanes<V>) - load<V>(rows[k].start + x + b * lanes<V>);
    for (int32_t b = 0; b < blocks; ++b) {
        const auto level = __builtin_convertvector(From::floats(sums[b]) * scale + 0.5f, As<int32_t, V>);
        store(dst + x + b * lanes<V>, __builtin_convertvector(level, As<uint16_t, V>));
    }
}

// What is left over at the end goes one by one.
template <class From, class V, class Sum>
ZERKLSC_SIMD void average(const SpanRow<Sum>* rows, int32_t row_count, int32_t count, float scale,
                          uint16_t* dst) {
    constexpr int32_t blocks = 4;
    int32_t x = 0;
    for (; x + blocks * lanes<V> <= count; x += blocks * lanes<V>)
        average_block<blocks, From, V>(rows, row_count, x, scale, dst);
    for (; x + lanes<V> <= count; x += lanes<V>)
        average_block<1, From, V>(rows, row_count, x, scale, dst);
    for (; x < count; ++x) {
        Sum sum = 0;
        for (int32_t k = 0; k < row_count; ++k)
            sum += rows[k].end[x] - rows[k].start[x];
        dst[x] = static_cast<uint16_t>(static_cast<int32_t>(static_cast<float>(sum) * scale + 0.5f));
    }
}

} // namespace

void running_samples(const uint16_t* samples, int32_t count, int32_t interleave, uint32_t* sums) {
    if (interleave == 2)
        run_along<2>(samples, count, sums);
    else
        run_along<1>(samples, count, sums);
}

void average_spans(const SpanRow<uint32_t>* rows, int32_t row_count, int32_t count, float scale,
                   uint16_t* dst) {
    average<FromNarrow, Narrow>(rows, row_count, count, scale, dst);
}

void average_small_spans(const SpanRow<uint32_t>* rows, int32_t row_count, int32_t count, float scale,
                         uint16_t* dst) {
    average<FromSmall, Narrow>(rows, row_count, count, scale, dst);
}

void average_wide_spans(const SpanRow<uint64_t>* rows, int32_t row_count, int32_t count, float scale,
                        uint16_t* dst) {
    average<FromWide, Wide>(rows, row_count, count, scale, dst);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
