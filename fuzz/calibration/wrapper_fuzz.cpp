// lsc2d_calibration_wrapper with any record on any small frame.
#include "support/allocations.h"
#include "support/input.h"
#include "zerklsc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    lsc2d_info info{};
    info.algorithm = input.number();
    take_geometry(input, info);
    info.filter_radius = input.number();
    info.shading_percent = input.number();
    const int64_t samples = elements_of(info.width, info.height), entries = table_entries(info);
    if (samples < 0 || entries < 0)
        return 0;
    const std::vector<uint16_t> raw = input.buffer<uint16_t>(samples);
    const auto tables = take_tables(input, info, entries);
    const zerklsc::testing::AllocationScope frees_what_is_left_by_intent;
    lsc2d_calibration_wrapper(raw.data(), &info);
    return 0;
}
