// The fast form of lsc_compress.
#include <algorithm>

#include "compress/centre.h"
#include "compress/lanes.h"
#include "compress/node_fields.h"
#include "compress/rows.h"
#include "compress/words.h"
#include "frame/scratch.h"

// The transform is linear modulo 65536: each channel is differenced on its own, and base less channel taken
// last. Rows are taken from the centre outwards, each less the one before it; before the first comes a row of
// unity gain, whose differences are unity at the anchors and 0 elsewhere.
namespace zerklsc {
namespace {

// One row of each channel, in the order of the roles: of gains, and of differences along the row.
using GainRows = ByRole<const uint16_t*>;
using DifferenceRows = ByRole<uint16_t*>;

// The words of all nodes, because a group of mode 1 may span two rows, and a few rows of everything else.
struct Workspace {
    Scratch<uint32_t> words;
    Scratch<uint16_t> rows;
    DifferenceRows previous; // of the row before, one step nearer the centre
    DifferenceRows current;
    uint16_t* from_right; // all ones where the inward neighbour is the right one
    uint16_t* from_left;  // all ones where it is the left one
};

// Half up to the unit that the mode keeps, without a sum that needs more than 16 bits.
template <uint8_t mode>
Lanes quantise(Lanes gain) {
    constexpr int dropped = dropped_bits(mode);
    return (gain >> dropped) + (gain >> (dropped - 1) & 1);
}

// Saturates signed values to what a field can hold.
template <Field field>
Lanes limit(Lanes lanes) {
    constexpr int16_t highest = (1 << (field.bits - 1)) - 1;
    const SignedLanes high = SignedLanes{} + highest;
    const SignedLanes low = ~high;
    SignedLanes x = reinterpret_cast<SignedLanes>(lanes);
    x = x > high ? high : x;
    return reinterpret_cast<Lanes>(x < low ? low : x);
}

// Adds a field to the lower and upper 16 bits of node words. A field may lie across both.
template <Field field>
void put_field(Lanes value, Lanes& lower, Lanes& upper) {
    const Lanes bits = limit<field>(value) & static_cast<uint16_t>((1 << field.bits) - 1);
    if constexpr (field.shift < 16)
        lower |= bits << field.shift;
    if constexpr (field.shift >= 16)
        upper |= bits << (field.shift - 16);
    else if constexpr (field.shift + field.bits > 16)
        upper |= bits >> (16 - field.shift);
}

// From the finished differences of eight nodes to their words.
template <uint8_t mode>
void pack(const ByRole<Lanes>& x, uint32_t* words) {
    constexpr NodeLayout layout = layout_of(mode);
    const Lanes base = x[role_a];
    Lanes lower = {}, upper = {};
    put_field<layout.a>(base, lower, upper);
    put_field<layout.b>(base - x[role_b], lower, upper);
    put_field<layout.c>(base - x[role_c], lower, upper);
    put_field<layout.d>(base - x[role_d], lower, upper);
    store(words, __builtin_shufflevector(lower, upper, 0, 8, 1, 9, 2, 10, 3, 11));
    store(words + lane_count / 2, __builtin_shufflevector(lower, upper, 4, 12, 5, 13, 6, 14, 7, 15));
}

// The inward neighbour is chosen by masks before it is quantised: the centre columns have none, and 0 is
// quantised to 0. The masks are 0 where the neighbour would be a border node.
template <uint8_t mode>
void compress_row(const GainRows& gains, const Workspace& work, uint32_t* words, int32_t width) {
    for_each_block(width, [&](ptrdiff_t c) {
        ByRole<Lanes> outward;
        for (int k = 0; k < role_count; ++k) {
            const uint16_t* const gain = gains[k] + c;
            const Lanes inward =
                (load(gain + 1) & load(work.from_right + c)) | (load(gain - 1) & load(work.from_left + c));
            const Lanes difference = quantise<mode>(load(gain)) - quantise<mode>(inward);
            outward[k] = difference - load(work.previous[k] + c);
            store(work.current[k] + c, difference);
        }
        pack<mode>(outward, words + c);
    });
}

// Rows `row` (a centre row), row + step, ... before `end`.
template <uint8_t mode>
void compress_half(const lsc_otp_info& info, Workspace& work, int32_t row, int32_t end, int32_t step) {
    const int32_t width = info.grid_width - 2;
    const Centre centre = centre_of(width);
    for (uint16_t* const previous : work.previous) {
        std::fill_n(previous, width, uint16_t{0});
        previous[centre.first] = previous[centre.last] = unity_offset(mode);
    }
    for (; row != end; row += step) {
        GainRows gains;
        for (int k = 0; k < role_count; ++k)
            gains[k] = inner_row(info, k, row);
        compress_row<mode>(gains, work, work.words.get() + ptrdiff_t{row} * width, width);
        std::swap(work.previous, work.current);
    }
}

bool prepare(Workspace& work, int32_t width, int32_t height) {
    constexpr int row_count = 2 * role_count + 2;
    work.words = allocate<uint32_t>(width, height);
    work.rows = allocate<uint16_t>(static_cast<uint64_t>(width) * row_count);
    if (!work.words || !work.rows)
        return false;
    const auto row = [&](int i) { return work.rows.get() + ptrdiff_t{i} * width; };
    for (int k = 0; k < role_count; ++k) {
        work.previous[k] = row(2 * k);
        work.current[k] = row(2 * k + 1);
    }
    work.from_right = row(2 * role_count);
    work.from_left = row(2 * role_count + 1);
    const Centre centre = centre_of(width);
    for (int32_t c = 0; c < width; ++c) {
        work.from_right[c] = c < centre.first ? 0xFFFF : 0;
        work.from_left[c] = c > centre.last ? 0xFFFF : 0;
    }
    return true;
}

} // namespace

int32_t compress_rows(const lsc_otp_info& info) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    Workspace work;
    if (!prepare(work, width, height))
        return -1;
    const Centre centre = centre_of(height);
    const bool wide = info.precision_mode == mode_24_bit;
    const auto compress_half_of = wide ? compress_half<mode_24_bit> : compress_half<mode_14_bit>;
    // An odd height has one centre row, which either half starts with and gets the same words for.
    compress_half_of(info, work, centre.first, -1, -1);
    compress_half_of(info, work, centre.last, height, 1);
    write_words(info.stream, work.words.get(), int64_t{width} * height, info.precision_mode);
    return 0;
}

} // namespace zerklsc
