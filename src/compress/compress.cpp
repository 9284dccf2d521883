// lsc_compress
#include <algorithm>

#include "compress/channel_roles.h"
#include "compress/rows.h"
#include "frame/convert.h"
#include "frame/scratch.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// Rounds half up to the unit that the mode keeps; a mode that does not exist keeps every bit.
int quantise(int gain, int dropped) {
    return (gain + ((1 << dropped) >> 1)) >> dropped;
}

// Fills row j of the planes: the base, and the base less each of the other channels.
void quantise_row(const lsc_otp_info& info, int32_t j, int16_t* const planes[role_count], int32_t width) {
    const uint16_t* gains[role_count];
    for (int k = 0; k < role_count; ++k)
        gains[k] = inner_row(info, k, j);
    const int dropped = dropped_bits(info.precision_mode);
    const ptrdiff_t to = ptrdiff_t{j} * width;
    for (int32_t i = 0; i < width; ++i) {
        const int base = quantise(gains[role_a][i], dropped);
        planes[role_a][to + i] = wrap16(base);
        for (int k = role_b; k < role_count; ++k)
            planes[k][to + i] = wrap16(base - quantise(gains[k][i], dropped));
    }
}

} // namespace

int32_t compress_planes(const lsc_otp_info& info) {
    const int32_t width = info.grid_width - 2;
    const int32_t height = info.grid_height - 2;
    const int64_t count = int64_t{width} * height;
    const Scratch<int16_t> memory = allocate<int16_t>(static_cast<uint64_t>(count) * role_count);
    if (!memory)
        return -1;
    // One plane behind the other, each dense, as the passes take them.
    int16_t* planes[role_count];
    for (int k = 0; k < role_count; ++k)
        planes[k] = memory.get() + k * count;

    // A pattern that does not exist has no channels: its stream is that of four planes of zeros.
    if (info.bayer_pattern > highest_bayer_pattern)
        std::fill_n(memory.get(), count * role_count, int16_t{0});
    else
        for (int32_t j = 0; j < height; ++j)
            quantise_row(info, j, planes, width);
    for (int k = 0; k < role_count; ++k)
        intra_cnl_diff(planes[k], width, height, k == role_a ? 1 : 0, info.precision_mode);
    return store_data(info.stream, planes[role_a], planes[role_b], planes[role_c], planes[role_d], width,
                      height, info.precision_mode);
}

} // namespace zerklsc

int32_t lsc_compress(lsc_otp_info* info) {
    using namespace zerklsc;
    if (info->grid_width < 3 || info->grid_height < 3)
        return 0;
    return has_fast_form(*info) ? compress_rows(*info) : compress_planes(*info);
}
