// zerklsc_correct() with any rows and strides, at any instruction set, against lsc2d_correction_wrapper() on
// the whole frame.
#include "support/hold_to.h"
#include "support/input.h"
#include "zerklsc_driver.h"

namespace {

// A frame in rows of `stride` samples, without padding behind the last.
std::vector<uint16_t> padded(const std::vector<uint16_t>& packed, size_t width, size_t stride) {
    std::vector<uint16_t> frame((packed.size() / width - 1) * stride + width, 0xABCD);
    for (size_t i = 0; i < packed.size(); ++i)
        frame[i / width * stride + i % width] = packed[i];
    return frame;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    lsc2d_info info{};
    const uint8_t choice = input.take<uint8_t>();
    info.algorithm = choice % 6;
    hold_to(choice / 6);
    take_geometry(input, info);
    const int32_t first_row = input.number(), rows = input.number();
    const size_t stride = info.width + input.take<uint8_t>() % size_t{40};
    const int64_t samples = elements_of(static_cast<int64_t>(stride), info.height);
    const int64_t entries = table_entries(info);
    if (samples <= 0 || entries < 0 || info.width == 0)
        return 0;
    const auto tables = take_tables(input, info, entries);
    const auto packed = input.buffer<uint16_t>(int64_t{info.width} * info.height);
    const auto in = padded(packed, info.width, stride);
    auto out = in;
    const auto status = zerklsc_correct(&info, in.data(), stride * sizeof(uint16_t), out.data(),
                                        stride * sizeof(uint16_t), first_row, rows);
    auto whole = packed;
    if (!ZERKLSC_REFUSED(status))
        lsc2d_correction_wrapper(whole.data(), whole.data(), &info);
    for (size_t i = 0; i < in.size(); ++i) {
        const size_t x = i % stride;
        const auto y = static_cast<int64_t>(i / stride);
        const bool corrected =
            !ZERKLSC_REFUSED(status) && x < info.width && y >= first_row && y < int64_t{first_row} + rows;
        expect(out[i] == (corrected ? whole[i / stride * info.width + x] : in[i]));
    }
    return 0;
}
