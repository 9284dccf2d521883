// What the tags of a DNG say about its mosaic.
//
// Tags: Adobe, "Digital Negative (DNG) Specification", version 1.4.0.0.
#pragma once

#include <vector>

#include "imaging/bayer_pattern.h"
#include "io/tiff_file.h"

namespace zerklsc::tool {

constexpr uint16_t opcode_list_2 = 51009;

// The first values of a tag, at most `most`; none where it is missing or no number.
std::vector<double> tag_values(TiffFile& tiff, const TiffDirectory& directory, uint16_t tag, uint32_t most);

// In pixels.
struct FrameSize {
    int width = 0, height = 0;
};

// Of the active area, over which opcodes are laid; a data failure where there is none.
FrameSize mosaic_size(TiffFile& tiff, const TiffDirectory& directory);

// A data failure for any other colour filter array.
BayerPattern mosaic_pattern(TiffFile& tiff, const TiffDirectory& directory);

} // namespace zerklsc::tool
