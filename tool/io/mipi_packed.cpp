// mipi_raw10_format, mipi_raw12_format: samples as MIPI CSI-2 packs them, four in five bytes or two in three.
// Of a group, all bytes but the last hold the high eight bits of a sample each; the last their low bits, the
// first sample's lowest.
#include "io/fitting_sizes.h"
#include "io/raw_format.h"
#include "io/sample_rows.h"

namespace zerklsc::tool {
namespace {

struct PackedFormat {
    Packing packing;
    int bits;
    const char* extension;
    const char* description;
};

constexpr PackedFormat raw10{Packing::raw10, 10, ".raw10", "headerless MIPI RAW10"};
constexpr PackedFormat raw12{Packing::raw12, 12, ".raw12", "headerless MIPI RAW12"};

template <const PackedFormat& format>
void unpack(const uint8_t* row, uint16_t* samples, size_t width) {
    constexpr size_t low_bits = format.bits - 8, group = 8 / low_bits;
    const auto sample = [](const uint8_t* bytes, size_t i) {
        return static_cast<uint16_t>(bytes[i] << low_bits
                                     | (bytes[group] >> (low_bits * i) & ((1 << low_bits) - 1)));
    };
    const size_t groups = width / group;
    for (size_t g = 0; g < groups; ++g)
        for (size_t i = 0; i < group; ++i)
            samples[group * g + i] = sample(row + (group + 1) * g, i);
    for (size_t i = 0; i < width % group; ++i)
        samples[group * groups + i] = sample(row + (group + 1) * groups, i);
}

template <const PackedFormat& format>
bool recognises(const InputFile& file, const RawHints& hints) {
    return hints.packing ? hints.packing == format.packing : extension_of(file.path()) == format.extension;
}

template <const PackedFormat& format>
RawFrame read(InputFile& file, const RawHints& hints) {
    const RowLayout layout = headerless_layout(file, hints, format.packing);
    RawFrame frame;
    frame.format = format.description;
    frame.width = hints.width;
    frame.height = hints.height;
    frame.bits = format.bits;
    frame.word_bits = format.bits;
    frame.samples = read_rows(file, layout, unpack<format>);
    return frame;
}

template <const PackedFormat& format>
constexpr RawFormat raw_format(const char* name) {
    return {name, format.extension, recognises<format>, read<format>, nullptr};
}

} // namespace

const RawFormat mipi_raw10_format = raw_format<raw10>("MIPI RAW10");
const RawFormat mipi_raw12_format = raw_format<raw12>("MIPI RAW12");

} // namespace zerklsc::tool
