// lsc_decompress on any stream and record; what it decodes is compressed again.
#include "support/input.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    lsc_otp_info info{};
    info.bayer_pattern = input.take<uint8_t>();
    info.precision_mode = input.take<uint8_t>();
    info.grid_width = input.number();
    info.grid_height = input.number();
    const int64_t entries = elements_of(info.grid_width, info.grid_height);
    if (entries < 0)
        return 0;
    const int64_t nodes = elements_of(int64_t{info.grid_width} - 2, int64_t{info.grid_height} - 2);
    std::vector<uint8_t> stream = input.buffer<uint8_t>(info.precision_mode == 0 ? 3 * nodes : nodes / 4 * 7);
    std::vector<uint16_t> tables[4];
    for (int k = 0; k < 4; ++k) {
        tables[k].resize(static_cast<size_t>(entries), 1024);
        info.lsc_table[k] = tables[k].data();
    }
    info.stream = stream.data();
    lsc_decompress(&info);
    lsc_compress(&info);
    return 0;
}
