// mipi_raw10_format: four samples in five bytes, as MIPI CSI-2 packs RAW10. Four bytes hold the high eight
// bits of a sample each; the fifth their low bits, the first sample's lowest.
#include "io/fitting_sizes.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

void unpack_raw10(const uint8_t* row, uint16_t* samples, size_t width) {
    const auto sample = [](const uint8_t* group, size_t i) {
        return static_cast<uint16_t>(group[i] << 2 | (group[4] >> (2 * i) & 3));
    };
    const size_t groups = width / 4;
    for (size_t g = 0; g < groups; ++g)
        for (size_t i = 0; i < 4; ++i)
            samples[4 * g + i] = sample(row + 5 * g, i);
    for (size_t i = 0; i < width % 4; ++i)
        samples[4 * groups + i] = sample(row + 5 * groups, i);
}

bool recognises_raw10(const InputFile& file, const RawHints& hints) {
    return hints.packing ? hints.packing == Packing::raw10 : extension_of(file.path()) == ".raw10";
}

RawFrame read_raw10(InputFile& file, const RawHints& hints) {
    const RowLayout layout = headerless_layout(file, hints, Packing::raw10);
    RawFrame frame;
    frame.format = "headerless MIPI RAW10";
    frame.width = hints.width;
    frame.height = hints.height;
    frame.bits = 10;
    frame.word_bits = 10;
    frame.samples = read_rows(file, layout, unpack_raw10);
    return frame;
}

} // namespace

const RawFormat mipi_raw10_format{"MIPI RAW10", ".raw10", recognises_raw10, read_raw10, nullptr};

} // namespace zerklsc::tool
