// tag_values, mosaic_size, mosaic_pattern
#include "convert/dng_tags.h"

#include "failure.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {
namespace {

constexpr uint16_t image_width = 256, image_height = 257, cfa_repeat = 33421, cfa_pattern = 33422;

} // namespace

std::vector<double> tag_values(TiffFile& tiff, const TiffDirectory& directory, uint16_t tag, uint32_t most) {
    const TiffEntry* const entry = directory.find(tag);
    return entry == nullptr ? std::vector<double>{} : tiff.numbers(*entry, most);
}

FrameSize mosaic_size(TiffFile& tiff, const TiffDirectory& directory) {
    const auto width = tag_values(tiff, directory, image_width, 1);
    const auto height = tag_values(tiff, directory, image_height, 1);
    const auto area = active_area(tiff, directory);
    if (width.empty() || height.empty())
        data_failure("{}: its mosaic has no size", tiff.path());
    const double w = area.size() == 4 ? area[3] - area[1] : width[0];
    const double h = area.size() == 4 ? area[2] - area[0] : height[0];
    if (!(w >= 2 && h >= 2 && w <= largest_side && h <= largest_side))
        data_failure("{}: its mosaic is {} x {}: expected 2 to {} in each direction", tiff.path(), w, h,
                     largest_side);
    return {static_cast<int>(w), static_cast<int>(h)};
}

BayerPattern mosaic_pattern(TiffFile& tiff, const TiffDirectory& directory) {
    const auto repeat = tag_values(tiff, directory, cfa_repeat, 2);
    std::string name;
    for (const double colour : tag_values(tiff, directory, cfa_pattern, 4))
        name += colour >= 0 && colour <= 2 ? "RGB"[static_cast<int>(colour)] : '?';
    const auto pattern = bayer_pattern_from(name);
    if (repeat != std::vector<double>{2, 2} || !pattern)
        data_failure("{}: its colour filter array is not RGGB, GRBG, GBRG or BGGR", tiff.path());
    return *pattern;
}

} // namespace zerklsc::tool
