// load_data on any stream; what it loads must survive store_data.
#include "support/input.h"
#include "zerklsc.h"

namespace {

struct Planes {
    std::vector<int16_t> of[4];

    explicit Planes(int64_t nodes) {
        for (std::vector<int16_t>& plane : of)
            plane.resize(static_cast<size_t>(nodes));
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    const uint8_t mode = input.take<uint8_t>();
    const int32_t width = input.number(), height = input.number();
    const int64_t nodes = elements_of(width, height);
    if (nodes < 0)
        return 0;
    const auto with_planes = [=](auto transfer, uint8_t* stream, Planes& p) {
        transfer(stream, p.of[0].data(), p.of[1].data(), p.of[2].data(), p.of[3].data(), width, height, mode);
    };
    std::vector<uint8_t> stream = input.buffer<uint8_t>(mode == 0 ? 3 * nodes : nodes / 4 * 7);
    Planes loaded(nodes), again(nodes);
    with_planes(load_data, stream.data(), loaded);
    with_planes(store_data, stream.data(), loaded);
    with_planes(load_data, stream.data(), again);
    for (int k = 0; k < 4; ++k)
        expect(loaded.of[k] == again.of[k]);
    return 0;
}
