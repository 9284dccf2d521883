// The fast form of lsc_decompress.
//
// The inverse transform is linear modulo 65536: base less difference is taken first, and each colour summed
// on its own. Rows are taken from the centre outwards, each summed along itself and added to the one before
// it; before the first comes a row of unity gain.
#include <algorithm>

#include "compress/forms.h"
#include "compress/half_kernels.h"
#include "compress/precision_mode.h"
#include "compress/words.h"
#include "frame/convert.h"
#include "frame/scratch.h"

namespace zerklsc {
namespace {

// Rows `first` (a centre row), first + step, ... before `end`.
void decompress_half(const lsc_otp_info& info, const uint32_t* words, const ByColour<uint16_t*>& sums,
                     int32_t first, int32_t end, int32_t step) {
    const int32_t width = info.grid_width - 2;
    const int unity = decoded_unity_offset(first, width, info.grid_height - 2, info.precision_mode);
    for (uint16_t* const sum : sums.of)
        std::fill_n(sum, width, low16(unity));
    DecompressedHalf half{.words = words + ptrdiff_t{first} * width,
                          .next_words = ptrdiff_t{step} * width,
                          .sums = sums,
                          .gains = inner_nodes(info),
                          .next_gains = ptrdiff_t{step} * info.grid_width,
                          .width = width,
                          .rows = (end - first) / step,
                          .centre = centre_of(width)};
    for (uint16_t*& gains : half.gains.of)
        gains += ptrdiff_t{first} * info.grid_width;
    const bool wide = info.precision_mode == mode_24_bit;
    const auto decompress =
        wide ? ZERKLSC_NARROW_KERNEL(decompress_half_24_bit) : ZERKLSC_NARROW_KERNEL(decompress_half_14_bit);
    decompress(half);
}

} // namespace

int32_t decompress_rows(const lsc_otp_info& info) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    const int64_t count = int64_t{width} * height;
    const int64_t room = int64_t{width} + 2 * block_nodes;
    // Blocks are read and summed up to a block beyond either end of what they belong to.
    const Scratch<uint32_t> padded_words = allocate<uint32_t>(static_cast<uint64_t>(count + 2 * block_nodes));
    const Scratch<uint16_t> padded_sums = allocate<uint16_t>(static_cast<uint64_t>(colour_count * room));
    if (!padded_words || !padded_sums)
        return -1;
    // The nodes that mode 1 does not store decode from differences of 0.
    std::fill_n(padded_words.get(), count + 2 * block_nodes, 0);
    std::fill_n(padded_sums.get(), colour_count * room, uint16_t{0});
    uint32_t* const words = padded_words.get() + block_nodes;
    read_words(info.stream, words, count, info.precision_mode);
    ByColour<uint16_t*> sums;
    for (int k = 0; k < colour_count; ++k)
        sums.of[k] = padded_sums.get() + k * room + block_nodes;

    // An odd height has one centre row, which either half starts with and decodes alike.
    const Centre centre = centre_of(height);
    decompress_half(info, words, sums, centre.first, -1, -1);
    decompress_half(info, words, sums, centre.last, height, 1);
    return 0;
}

} // namespace zerklsc
