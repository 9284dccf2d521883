// A row of boxes that moves down by one row of samples.
#include "sampling/mask.h"
#include "sampling/running_lanes.h"
#include "sampling/sum_kernels.h"

namespace zerklsc::ZERKLSC_INSTRUCTION_SET {
namespace {

using Pairs = Vector<uint32_t>;

constexpr bool first_is_low = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

ZERKLSC_SIMD Pairs firsts(Pairs v) {
    return first_is_low ? v & 0xFFFFu : v >> 16;
}

ZERKLSC_SIMD Pairs seconds(Pairs v) {
    return first_is_low ? v >> 16 : v & 0xFFFFu;
}

// Of the low words of both.
ZERKLSC_SIMD Pairs paired(Pairs first, Pairs second) {
    return first_is_low ? (first & 0xFFFFu) | second << 16 : first << 16 | (second & 0xFFFFu);
}

// The running sums, modulo 2^32, of what enters less what leaves.
ZERKLSC_SIMD void run_along(const uint16_t* entering, const uint16_t* leaving, int32_t width,
                            const BoxRow& boxes) {
    uint32_t* const even = boxes.running[0];
    uint32_t* const odd = boxes.running[1];
    Pairs sum{};
    ptrdiff_t x = 0;
    for (; x + 2 * lanes<Pairs> <= width; x += 2 * lanes<Pairs>) {
        const auto in = load<Pairs>(entering + x);
        const auto out = load<Pairs>(leaving + x);
        const Pairs second = seconds(in) - seconds(out);
        const Pairs pairs = running<1>(firsts(in) - firsts(out) + second);
        store(odd + x / 2, sum + pairs);
        store(even + x / 2, sum + pairs - second);
        sum += highest<1>(pairs);
    }
    for (uint32_t last = sum[0]; x < width; ++x) {
        last += uint32_t{entering[x]} - leaving[x];
        boxes.running[x % 2][x / 2] = last;
    }
}

// A change of a sum fits 31 bits together with its low part, and either part is a float without being
// rounded.
constexpr int64_t longest_side = 2 * max_radius + 1;
constexpr int64_t whole_floats = 1 << 24;
static_assert(longest_side * UINT16_MAX + box_high_unit <= INT32_MAX);
static_assert(box_high_unit <= whole_floats);
static_assert(longest_side * longest_side * UINT16_MAX / box_high_unit < whole_floats);

// Moves the boxes with the numbers 2 * i + parity and on by twos; returns their rounded levels.
template <class V>
ZERKLSC_SIMD As<uint32_t, V> moved(const BoxRow& boxes, ptrdiff_t parity, ptrdiff_t i, int32_t radius,
                                   float scale) {
    using Floats = As<float, V>;
    uint32_t* const high = boxes.high[parity] + i;
    uint32_t* const low = boxes.low[parity] + i;
    const uint32_t* const end = boxes.running[parity] + i + radius;
    const uint32_t* const before = boxes.running[1 - parity] + i - 1 + parity;
    const auto change = reinterpret_cast<V>(load<As<uint32_t, V>>(end) - load<As<uint32_t, V>>(before));
    const V sum = load<V>(low) + change;
    const V upper = load<V>(high) + (sum >> box_low_bits);
    const V lower = sum & (box_high_unit - 1);
    store(high, upper);
    store(low, lower);
    const Floats mean = (__builtin_convertvector(upper, Floats) * float{box_high_unit}
                         + __builtin_convertvector(lower, Floats))
                        * scale;
    return reinterpret_cast<As<uint32_t, V>>(__builtin_convertvector(mean + 0.5f, V));
}

} // namespace

void move_boxes(const BoxRow& row, const uint16_t* entering, const uint16_t* leaving, int32_t radius,
                int32_t count, float scale, uint16_t* dst) {
    using One = Vector<int32_t, sizeof(int32_t)>;
    const BoxRow boxes = row; // no part of what is written
    run_along(entering, leaving, count + 2 * radius, boxes);
    ptrdiff_t x = 0;
    for (; x + 2 * lanes<Pairs> <= count; x += 2 * lanes<Pairs>)
        store(dst + x, paired(moved<Vector<int32_t>>(boxes, 0, x / 2, radius, scale),
                              moved<Vector<int32_t>>(boxes, 1, x / 2, radius, scale)));
    for (; x < count; ++x)
        dst[x] = static_cast<uint16_t>(moved<One>(boxes, x % 2, x / 2, radius, scale)[0]);
}

} // namespace zerklsc::ZERKLSC_INSTRUCTION_SET
