// The parameter generators with statuses and counts, beside those that print what they have to say.
#include <cstdlib>
#include <memory>

#include <fmt/core.h>

#include "frames.h"
#include "workload.h"
#include "zerklsc_driver.h"

namespace zerklsc::bench {
namespace {

constexpr int32_t width = 4000, height = 3000, step = 64;

// A flat field and the record of a generator, whose tables are listed column by column of the planes.
struct Module {
    std::vector<uint16_t> frame = flat_field(width, height);
    Tables tables{width, height, step, 2};
    isp_param_tag record{};

    Module() {
        for (int pointer = 0; pointer < ZERKLSC_CHANNELS; ++pointer)
            record.lsc_table[pointer] = tables.info.lsc_table[pointer];
        record.grid = step;
        record.shading_percent = 100;
        record.filter_radius = 8;
        record.isp_type = ZERKLSC_ISP_TVESSA2;
        record.width = width;
        record.height = height;
    }
};

template <class Reporting, class Printing>
Workload workload(const char* name, Reporting reporting, Printing printing) {
    const auto module = std::make_shared<Module>();
    return {.name = fmt::format("{}, step {}, radius 8", name, step),
            .frame_bytes = module->frame.size() * sizeof(uint16_t),
            .fast =
                [=] {
                    zerklsc_report report;
                    // What is refused takes no time.
                    if (reporting(module->frame.data(), &module->record, &report) != ZERKLSC_OK)
                        std::abort();
                },
            .plain = [=] { printing(module->frame.data(), &module->record); },
            .at_most = {},
            .at_least = {}};
}

} // namespace

std::vector<Workload> generator_workloads() {
    return {
        workload("zerklsc_generate_orvel_otp", zerklsc_generate_orvel_otp, bicubic_lnc_param_gen_orvel_otp),
        workload("zerklsc_generate_halvane", zerklsc_generate_halvane, bicubic_lnc_param_gen_halvane)};
}

} // namespace zerklsc::bench
