// The tags of TIFF and DNG files that are read or written, by the names of their standards.
//
// Aldus, "TIFF", revision 6.0; Adobe, "Digital Negative (DNG) Specification", version 1.4.0.0.
#pragma once

#include <cstdint>

namespace zerklsc::tool::tag {

constexpr uint16_t new_subfile_type = 254, image_width = 256, image_length = 257, bits_per_sample = 258,
                   compression = 259, photometric_interpretation = 262, make = 271, model = 272,
                   strip_offsets = 273, orientation = 274, samples_per_pixel = 277, rows_per_strip = 278,
                   strip_byte_counts = 279, planar_configuration = 284, tile_width = 322, tile_length = 323,
                   tile_offsets = 324, sub_ifds = 330, cfa_repeat_pattern_dim = 33421, cfa_pattern = 33422;

constexpr uint16_t dng_version = 50706, dng_backward_version = 50707, unique_camera_model = 50708,
                   black_level_repeat_dim = 50713, black_level = 50714, white_level = 50717,
                   color_matrix_1 = 50721, as_shot_neutral = 50728, calibration_illuminant_1 = 50778,
                   active_area = 50829, opcode_list_2 = 51009;

// Of photometric_interpretation.
constexpr uint16_t colour_filter_array = 32803;

} // namespace zerklsc::tool::tag
