#include "compress/forms.h"

#include <bit>

#include "compress/half_kernels.h"
#include "compress/precision_mode.h"
#include "cpu/instruction_set.h"

namespace zerklsc {

bool has_fast_form(const lsc_otp_info& info) {
    return info.grid_width - 2 >= block_nodes && info.bayer_pattern <= highest_bayer_pattern
           && info.precision_mode <= mode_14_bit && std::endian::native == std::endian::little
           && has_vectors();
}

ByColour<uint16_t*> inner_nodes(const lsc_otp_info& info) {
    ByColour<uint16_t*> nodes;
    for (const Colour colour : {Gb, B, R, Gr})
        nodes.of[colour] = info.lsc_table[plane_of(colour, info.bayer_pattern)] + info.grid_width + 1;
    return nodes;
}

} // namespace zerklsc
