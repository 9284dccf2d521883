// DngMosaic
#include "io/dng_mosaic.h"

#include "failure.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {
namespace {

TiffDirectory mosaic_directory(TiffFile& tiff) {
    for (TiffDirectory& directory : tiff.directories()) {
        const TiffEntry* const kind = directory.find(tag::photometric_interpretation);
        if (kind != nullptr && tiff.numbers(*kind, 1) == std::vector<double>{tag::colour_filter_array})
            return directory;
    }
    data_failure("{}: holds no mosaic of a colour filter array: expected a DNG with raw samples",
                 tiff.path());
}

} // namespace

DngMosaic::DngMosaic(InputFile& file) : tiff(file), directory(mosaic_directory(tiff)) {}

std::vector<double> DngMosaic::values(uint16_t tag, uint32_t most) {
    const TiffEntry* const entry = directory.find(tag);
    return entry == nullptr ? std::vector<double>{} : tiff.numbers(*entry, most);
}

std::vector<double> DngMosaic::active_area() {
    const TiffEntry* const entry = directory.find(tag::active_area);
    if (entry == nullptr)
        return {};
    std::vector<double> corners = tiff.numbers(*entry, 4);
    if (entry->count != 4 || corners.size() != 4)
        data_failure("{}: its active area is not the four numbers of top, left, bottom and right", path());
    return corners;
}

FrameSize DngMosaic::size() {
    const auto width = values(tag::image_width, 1), height = values(tag::image_length, 1);
    const auto area = active_area();
    if (width.empty() || height.empty())
        data_failure("{}: its mosaic has no size", path());
    const double w = area.size() == 4 ? area[3] - area[1] : width[0];
    const double h = area.size() == 4 ? area[2] - area[0] : height[0];
    if (!(w >= 2 && h >= 2 && w <= largest_side && h <= largest_side))
        data_failure("{}: its mosaic is {} x {}: expected 2 to {} in each direction", path(), w, h,
                     largest_side);
    return {static_cast<int>(w), static_cast<int>(h)};
}

BayerPattern DngMosaic::pattern() {
    const auto repeat = values(tag::cfa_repeat_pattern_dim, 2);
    std::string name;
    for (const double colour : values(tag::cfa_pattern, 4))
        name += colour >= 0 && colour <= 2 ? "RGB"[static_cast<int>(colour)] : '?';
    const auto pattern = bayer_pattern_from(name);
    if (repeat != std::vector<double>{2, 2} || !pattern)
        data_failure("{}: its colour filter array is not RGGB, GRBG, GBRG or BGGR", path());
    return *pattern;
}

} // namespace zerklsc::tool
