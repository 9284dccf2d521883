// The mosaic of a DNG: its directory, and what the tags there say about it.
#pragma once

#include <vector>

#include "imaging/bayer_pattern.h"
#include "io/tiff_file.h"
#include "io/tiff_tags.h"

namespace zerklsc::tool {

// In pixels.
struct FrameSize {
    int width = 0, height = 0;
};

struct DngMosaic {
    // Takes the first mosaic of the file; a data failure where it has none.
    explicit DngMosaic(InputFile& file);

    const std::string& path() const { return tiff.path(); }
    // The first values of a tag, at most `most`; none where it is missing or no number.
    std::vector<double> values(uint16_t tag, uint32_t most);

    // Top, left, bottom and right in its frame; empty where the file does not say, a data failure where it
    // says other than four numbers.
    std::vector<double> active_area();
    // Of the active area, over which opcodes are laid; a data failure where there is none.
    FrameSize size();
    // A data failure for any other colour filter array.
    BayerPattern pattern();

    TiffFile tiff;
    TiffDirectory directory;
};

} // namespace zerklsc::tool
