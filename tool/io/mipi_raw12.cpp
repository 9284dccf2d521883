// mipi_raw12_format: two samples in three bytes, as MIPI CSI-2 packs RAW12. Two bytes hold the high eight
// bits of a sample each; the third their low bits, the first sample's lowest.
#include "io/fitting_sizes.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

// Rows hold whole groups; frames are an even number of samples wide.
void unpack_raw12(const uint8_t* row, uint16_t* samples, size_t width) {
    for (size_t g = 0; g < width / 2; ++g) {
        samples[2 * g] = static_cast<uint16_t>(row[3 * g] << 4 | (row[3 * g + 2] & 15));
        samples[2 * g + 1] = static_cast<uint16_t>(row[3 * g + 1] << 4 | row[3 * g + 2] >> 4);
    }
}

bool recognises_raw12(const InputFile& file, const RawHints& hints) {
    return hints.packing ? hints.packing == Packing::raw12 : extension_of(file.path()) == ".raw12";
}

RawFrame read_raw12(InputFile& file, const RawHints& hints) {
    const RowLayout layout = headerless_layout(file, hints, Packing::raw12);
    RawFrame frame;
    frame.format = "headerless MIPI RAW12";
    frame.width = hints.width;
    frame.height = hints.height;
    frame.bits = 12;
    frame.word_bits = 12;
    frame.samples = read_rows(file, layout, unpack_raw12);
    return frame;
}

} // namespace

const RawFormat mipi_raw12_format{"MIPI RAW12", ".raw12", recognises_raw12, read_raw12, nullptr};

} // namespace zerklsc::tool
