// Calibration by sampling and by the surface fit, with any record on any frame, at any instruction set,
// against their plain forms.
#include <cstdlib>

#include "calibration/beta_plain.h"
#include "calibration/orvel_plain.h"
#include "support/allocations.h"
#include "support/hold_to.h"
#include "support/input.h"

namespace {

using namespace zerklsc::fuzz;
using Tables = std::vector<std::vector<uint16_t>>;

// The plain fit lays every node over every point of the raster.
constexpr int64_t most_fitted_nodes = 49;

// The plain sampling reads every sample of each node's window.
constexpr int64_t largest_compared_radius = 1000;
constexpr int64_t most_compared_samples = 10'000'000;

struct Request {
    std::vector<uint16_t> raw;
    int32_t width, height;
    int32_t nx, ny;
    lsc2d_calib_param param;
};

template <class Method>
int32_t run(Method method, Request& r, Tables& tables) {
    uint16_t* list[4] = {tables[0].data(), tables[1].data(), tables[2].data(), tables[3].data()};
    const zerklsc::testing::AllocationScope frees_what_is_left_by_intent;
    return method(r.raw.data(), r.width, r.height, list, r.nx, r.ny, &r.param);
}

void compare_sampling(Request& r, Tables tables) {
    Tables expected = tables;
    const int32_t status = run(lsc2d_calibration_orvel, r, tables);
    uint16_t* list[4] = {expected[0].data(), expected[1].data(), expected[2].data(), expected[3].data()};
    const int64_t radius = r.param.filter_radius;
    const int64_t side = 2 * radius + 1, nodes = static_cast<int64_t>(expected[0].size());
    if (std::abs(radius) > largest_compared_radius || nodes * side * side > most_compared_samples)
        return;
    if (status == 0)
        zerklsc::plain::calibrate_orvel(r.raw.data(), r.width, r.height, list, r.nx, r.ny, r.param);
    expect(tables == expected);
}

void compare_fit(Request& r, Tables tables) {
    Tables expected = tables;
    if (run(lsc2d_calibration_beta, r, tables) == 0)
        expected = zerklsc::plain::calibrate_beta(r.raw, r.width, r.height, r.nx, r.ny, r.param);
    expect(tables == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t choice = input.take<uint8_t>();
    hold_to(choice / 2);
    Request r{{}, input.number(), input.number(), input.number(), input.number(), {}};
    lsc2d_calib_param& p = r.param;
    for (int32_t* field :
         {&p.grid, &p.filter_radius, &p.filter_type, &p.boundary_mode, &p.border_mode, &p.border_aux})
        *field = input.number();
    const int64_t samples = elements_of(r.width, r.height), nodes = elements_of(r.nx, r.ny);
    if (samples < 0 || nodes < 0)
        return 0;
    r.raw = input.buffer<uint16_t>(samples);
    const Tables tables(4, std::vector<uint16_t>(static_cast<size_t>(nodes), 7));
    if (choice % 2 == 0)
        compare_sampling(r, tables);
    else if (nodes <= most_fitted_nodes)
        compare_fit(r, tables);
    return 0;
}
