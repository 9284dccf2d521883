// lsc_compress and lsc_decompress with any record, gains and stream, against their plain forms.
#include "compress/forms.h"
#include "support/input.h"

namespace {

using namespace zerklsc::fuzz;

// A record with tables and a stream of its own, which are filled with the bytes that are left.
struct Otp {
    lsc_otp_info info;
    std::array<std::vector<uint16_t>, 4> tables;
    std::vector<uint8_t> stream;

    Otp(const Input& input, const lsc_otp_info& request, int64_t entries, int64_t nodes) : info(request) {
        tables = take_tables(input, info, entries);
        stream.resize(static_cast<size_t>(info.precision_mode == 0 ? 3 * nodes : nodes / 4 * 7));
        fill_stream(input);
    }

    void fill_stream(const Input& input) {
        stream = input.buffer<uint8_t>(static_cast<int64_t>(stream.size()));
        info.stream = stream.data();
    }

    // Of inner node n of table k.
    uint16_t gain(size_t k, int64_t n) const {
        const int32_t width = info.grid_width - 2;
        return info.lsc_table[k][(n / width + 1) * info.grid_width + n % width + 1];
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
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
    Otp fast(input, info, entries, nodes), plain(input, info, entries, nodes);
    lsc_compress(&fast.info);
    if (nodes != 0)
        zerklsc::plain::compress(plain.info);
    expect(fast.stream == plain.stream);
    for (Otp* otp : {&fast, &plain})
        otp->fill_stream(input);
    lsc_decompress(&fast.info);
    if (nodes != 0)
        zerklsc::plain::decompress(plain.info);
    for (size_t k = 0; k < 4; ++k)
        for (int64_t n = 0; n < nodes; ++n)
            expect(fast.gain(k, n) == plain.gain(k, n));
    return 0;
}
