// lsc_decompress
#include "compress/dense_planes.h"
#include "compress/forms.h"
#include "compress/precision_mode.h"
#include "frame/convert.h"
#include "table/wrapping_border.h"
#include "zerklsc.h"

namespace zerklsc {
namespace {

// Back to the scale of the tables, with zeros for the dropped bits. There is no rounding term: the encoder
// has rounded to nearest, so a caller gets multiples of the unit, and compressing them again changes nothing.
uint16_t restore_gain(int quantised, int dropped) {
    return low16(int64_t{quantised} * (1 << dropped));
}

// Fills inner row j of the tables from the planes: the base, and for the other colours the base less their
// difference from it.
void restore_row(const lsc_otp_info& info, int32_t j, const ByColour<int16_t*>& planes, int32_t width) {
    const ByColour<uint16_t*> gains = inner_nodes(info);
    const int dropped = dropped_bits(info.precision_mode);
    const ptrdiff_t from = ptrdiff_t{j} * width;
    const ptrdiff_t to = ptrdiff_t{j} * info.grid_width;
    for (int32_t i = 0; i < width; ++i) {
        const int base = planes.of[Gb][from + i];
        gains.of[Gb][to + i] = restore_gain(base, dropped);
        for (int k = B; k < colour_count; ++k)
            gains.of[k][to + i] = restore_gain(base - planes.of[k][from + i], dropped);
    }
}

} // namespace

int32_t plain::decompress(const lsc_otp_info& info) {
    DensePlanes dense = dense_planes(info);
    if (!dense.memory)
        return -1;
    const auto& [width, height, memory, planes] = dense;
    // The nodes that mode 1 does not store decode from differences of 0.
    dense.clear();
    load_data(info.stream, planes.of[Gb], planes.of[B], planes.of[R], planes.of[Gr], width, height,
              info.precision_mode);
    for (int k = 0; k < colour_count; ++k)
        deintra_cnl_diff(planes.of[k], width, height, k == Gb ? 1 : 0, info.precision_mode);
    if (info.bayer_pattern <= highest_bayer_pattern)
        for (int32_t j = 0; j < height; ++j)
            restore_row(info, j, planes, width);
    return 0;
}

} // namespace zerklsc

int32_t lsc_decompress(lsc_otp_info* info) {
    using namespace zerklsc;
    if (info->grid_width < 3 || info->grid_height < 3)
        return 0;
    const int32_t status = has_fast_form(*info) ? decompress_rows(*info) : plain::decompress(*info);
    if (status != 0)
        return status;
    for (uint16_t* const table : info->lsc_table)
        fill_wrapping_border(packed_view(table, info->grid_width, info->grid_height));
    return 0;
}
