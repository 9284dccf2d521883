// The mosaic's functions on frames of any size, pixel by pixel.
#include "support/input.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::fuzz;

// An odd last column or row belongs to no plane: it is not split, and merging leaves it as it is.
void split_and_merge(const std::vector<uint16_t>& raw, int32_t width, int32_t height) {
    const int32_t plane_width = std::max(width, 0) / 2, plane_height = std::max(height, 0) / 2;
    std::vector<uint16_t> planes[4];
    uint16_t* list[4];
    for (int c = 0; c < 4; ++c) {
        planes[c].resize(static_cast<size_t>(elements_of(plane_width, plane_height)));
        list[c] = planes[c].data();
    }
    bayer_split_channel(raw.data(), list, width, height);
    std::vector<uint16_t> merged(raw.size(), 0xABCD);
    bayer_merge_channel(merged.data(), list, width, height);
    for (size_t i = 0; i < raw.size(); ++i) {
        const int32_t x = static_cast<int32_t>(i) % width, y = static_cast<int32_t>(i) / width;
        const bool in_plane = x / 2 < plane_width && y / 2 < plane_height;
        expect(merged[i] == (in_plane ? raw[i] : 0xABCD));
        if (in_plane)
            expect(planes[(x & 1) + 2 * (y & 1)][static_cast<size_t>(y / 2 * plane_width + x / 2)] == raw[i]);
    }
}

void subtract_black(const std::vector<uint16_t>& raw, const isp_blc_param& param) {
    std::vector<uint16_t> above = raw;
    isp_blc_process(above.data(), &param);
    for (size_t i = 0; i < raw.size(); ++i) {
        const size_t x = i % param.width, y = i / param.width;
        expect(above[i] == std::max(raw[i] - param.blc[(x & 1) + 2 * (y & 1)], 0));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const int32_t width = input.number(), height = input.number();
    const auto levels = input.take<std::array<uint8_t, 4>>();
    const int64_t samples = elements_of(width, height);
    if (samples < 0)
        return 0;
    const auto raw = input.buffer<uint16_t>(samples);
    split_and_merge(raw, width, height);
    isp_blc_param param{static_cast<uint16_t>(width), static_cast<uint16_t>(height), {}};
    std::copy(levels.begin(), levels.end(), param.blc);
    if (samples != 0)
        subtract_black(raw, param);
    return 0;
}
