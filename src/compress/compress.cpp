// lsc_compress
#include "compress/dense_planes.h"
#include "compress/forms.h"
#include "compress/precision_mode.h"
#include "frame/convert.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// Rounds half up to the unit that the mode keeps; a mode that does not exist keeps every bit.
int quantise(int gain, int dropped) {
    return (gain + ((1 << dropped) >> 1)) >> dropped;
}

// Fills row j of the planes: the base, and the base less each of the other colours.
void quantise_row(const lsc_otp_info& info, int32_t j, const ByColour<int16_t*>& planes, int32_t width) {
    const ByColour<uint16_t*> gains = inner_nodes(info);
    const int dropped = dropped_bits(info.precision_mode);
    const ptrdiff_t from = ptrdiff_t{j} * info.grid_width;
    const ptrdiff_t to = ptrdiff_t{j} * width;
    for (int32_t i = 0; i < width; ++i) {
        const int base = quantise(gains.of[Gb][from + i], dropped);
        planes.of[Gb][to + i] = wrap16(base);
        for (int k = B; k < colour_count; ++k)
            planes.of[k][to + i] = wrap16(base - quantise(gains.of[k][from + i], dropped));
    }
}

} // namespace

int32_t plain::compress(const lsc_otp_info& info) {
    DensePlanes dense = dense_planes(info);
    if (!dense.memory)
        return -1;
    const auto& [width, height, memory, planes] = dense;
    // A pattern that does not exist has no colours: its stream is that of four planes of zeros.
    if (info.bayer_pattern > highest_bayer_pattern)
        dense.clear();
    else
        for (int32_t j = 0; j < height; ++j)
            quantise_row(info, j, planes, width);
    for (int k = 0; k < colour_count; ++k)
        intra_cnl_diff(planes.of[k], width, height, k == Gb ? 1 : 0, info.precision_mode);
    return store_data(info.stream, planes.of[Gb], planes.of[B], planes.of[R], planes.of[Gr], width, height,
                      info.precision_mode);
}

} // namespace zerklsc

int32_t lsc_compress(lsc_otp_info* info) {
    using namespace zerklsc;
    if (info->grid_width < 3 || info->grid_height < 3)
        return 0;
    return has_fast_form(*info) ? compress_rows(*info) : plain::compress(*info);
}
