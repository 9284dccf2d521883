// The two forms of lsc_compress and lsc_decompress. The fast ones go row by row from the centre outwards.
#pragma once

#include <bit>
#include <cstddef>

#include "compress/channel_roles.h"
#include "compress/lanes.h"
#include "cpu/instruction_set.h"
#include "zerklsc.h"

namespace zerklsc {

// Vectors are part of every processor the library is for, but for ARM without NEON.
inline bool has_vectors() {
#if defined(__arm__)
    return instruction_set() == InstructionSet::neon;
#else
    return true;
#endif
}

// Whether the fast forms can do it. What they leave to the plain ones are rows shorter than a vector,
// patterns and modes that do not exist, and processors without vectors or with the high byte first.
inline bool has_fast_form(const lsc_otp_info& info) {
    return info.grid_width - 2 >= lane_count && info.bayer_pattern <= highest_bayer_pattern
           && info.precision_mode <= mode_14_bit && std::endian::native == std::endian::little
           && has_vectors();
}

// Both need an inner node and has_fast_form(), and return -1 for a failed allocation, 0 otherwise.
int32_t compress_rows(const lsc_otp_info& info);
int32_t decompress_rows(const lsc_otp_info& info); // leaves the borders as they are

// The plain forms, plane by plane with the passes that are exported, for all that has an inner node.
int32_t compress_planes(const lsc_otp_info& info);
int32_t decompress_planes(const lsc_otp_info& info); // leaves the borders as they are

// Row r of the inner nodes of the table behind a role.
inline uint16_t* inner_row(const lsc_otp_info& info, int role, int32_t r) {
    return info.lsc_table[plane_of_role(role, info.bayer_pattern)] + (ptrdiff_t{r} + 1) * info.grid_width + 1;
}

} // namespace zerklsc
