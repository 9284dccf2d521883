// zerklsc_check_stream
#include "compress/centre.h"
#include "frame/planes.h"
#include "zerklsc_driver.h"

zerklsc_status zerklsc_check_stream(const lsc_otp_info* info) {
    using namespace zerklsc;
    constexpr int32_t fewest = 3 + 2 * ZERKLSC_BORDER;
    if (info == nullptr)
        return ZERKLSC_NULL_POINTER;
    if (info->bayer_pattern > highest_bayer_pattern)
        return ZERKLSC_UNKNOWN_PATTERN;
    if (info->precision_mode > ZERKLSC_PRECISION_14_BITS)
        return ZERKLSC_UNKNOWN_PRECISION;
    if (info->grid_width < fewest || info->grid_height < fewest)
        return ZERKLSC_TOO_FEW_NODES;
    const int32_t inner_w = info->grid_width - 2 * ZERKLSC_BORDER;
    const int32_t inner_h = info->grid_height - 2 * ZERKLSC_BORDER;
    if (has_lowered_half(inner_w, inner_h))
        return ZERKLSC_STREAM_DARKENS;
    if (info->precision_mode == ZERKLSC_PRECISION_14_BITS && int64_t{inner_w} * inner_h % 4 != 0)
        return ZERKLSC_STREAM_DROPS_NODES;
    return ZERKLSC_OK;
}
