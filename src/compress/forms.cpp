#include "compress/forms.h"

#include <bit>

#include "compress/precision_mode.h"
#include "compress/row_kernels.h"
#include "cpu/instruction_set.h"

namespace zerklsc {

bool has_fast_form(const lsc_otp_info& info) {
    return info.grid_width - 2 >= block_nodes && info.bayer_pattern <= highest_bayer_pattern
           && info.precision_mode <= mode_14_bit && std::endian::native == std::endian::little
           && has_vectors();
}

} // namespace zerklsc
