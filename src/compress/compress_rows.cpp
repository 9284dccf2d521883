// The fast form of lsc_compress.
//
// The transform is linear modulo 65536: each colour is differenced on its own, and base less colour taken
// last. Rows are taken from the centre outwards, each less the one before it; before the first comes a row of
// unity gain, whose differences are unity at the anchors and 0 elsewhere.
#include <algorithm>

#include "compress/forms.h"
#include "compress/half_kernels.h"
#include "compress/precision_mode.h"
#include "compress/words.h"
#include "frame/scratch.h"

namespace zerklsc {
namespace {

// The words of all nodes, because a group of mode 1 may span two rows, and a few rows of everything else.
struct Workspace {
    Scratch<uint32_t> words;
    Scratch<uint16_t> rows;
    ByColour<uint16_t*> previous; // differences of the row before, one step nearer the centre
    ByColour<uint16_t*> current;
    uint16_t* from_right; // masks of CompressedHalf
    uint16_t* from_left;
};

bool prepare(Workspace& work, int32_t width, int32_t height) {
    constexpr int row_count = 2 * colour_count + 2;
    work.words = allocate<uint32_t>(width, height);
    work.rows = allocate<uint16_t>(static_cast<uint64_t>(width) * row_count);
    if (!work.words || !work.rows)
        return false;
    const auto row = [&](int i) { return work.rows.get() + ptrdiff_t{i} * width; };
    for (int k = 0; k < colour_count; ++k) {
        work.previous.of[k] = row(2 * k);
        work.current.of[k] = row(2 * k + 1);
    }
    work.from_right = row(2 * colour_count);
    work.from_left = row(2 * colour_count + 1);
    const Centre centre = centre_of(width);
    for (int32_t c = 0; c < width; ++c) {
        work.from_right[c] = c < centre.first ? 0xFFFF : 0;
        work.from_left[c] = c > centre.last ? 0xFFFF : 0;
    }
    return true;
}

// Rows `first` (a centre row), first + step, ... before `end`.
void compress_half(const lsc_otp_info& info, Workspace& work, int32_t first, int32_t end, int32_t step) {
    const int32_t width = info.grid_width - 2;
    const Centre centre = centre_of(width);
    for (uint16_t* const previous : work.previous.of) {
        std::fill_n(previous, width, uint16_t{0});
        previous[centre.first] = previous[centre.last] = unity_offset(info.precision_mode);
    }
    CompressedHalf half{.gains = {},
                        .next_gains = ptrdiff_t{step} * info.grid_width,
                        .previous = work.previous,
                        .current = work.current,
                        .from_right = work.from_right,
                        .from_left = work.from_left,
                        .words = work.words.get() + ptrdiff_t{first} * width,
                        .next_words = ptrdiff_t{step} * width,
                        .width = width,
                        .rows = (end - first) / step};
    const ByColour<uint16_t*> gains = inner_nodes(info);
    for (int k = 0; k < colour_count; ++k)
        half.gains.of[k] = gains.of[k] + ptrdiff_t{first} * info.grid_width;
    const bool wide = info.precision_mode == mode_24_bit;
    const auto compress =
        wide ? ZERKLSC_NARROW_KERNEL(compress_half_24_bit) : ZERKLSC_NARROW_KERNEL(compress_half_14_bit);
    compress(half);
}

} // namespace

int32_t compress_rows(const lsc_otp_info& info) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    Workspace work;
    if (!prepare(work, width, height))
        return -1;
    // An odd height has one centre row, which either half starts with and gets the same words for.
    const Centre centre = centre_of(height);
    compress_half(info, work, centre.first, -1, -1);
    compress_half(info, work, centre.last, height, 1);
    write_words(info.stream, work.words.get(), int64_t{width} * height, info.precision_mode);
    return 0;
}

} // namespace zerklsc
