// Both parameter generators and lsc2d_otp_table with any record on any frame.
#include "support/input.h"
#include "zerklsc.h"

namespace {

int64_t table_nodes(int32_t raw_size, const isp_param_tag& param) {
    const int32_t step = param.grid & 0xFF;
    const int32_t covered = raw_size / 2 - (param.isp_type == ZERKLSC_ISP_TVESSA2 ? 0 : 1);
    return step == 0 || covered < 0 ? 0 : (covered + step - 1) / step + 3;
}

// The counts are right only for some of the frames; the others must be refused.
void run_otp_table(uint16_t* raw, const isp_param_tag& param, int64_t table_w, int64_t table_h) {
    uint32_t calib[3] = {param.grid, static_cast<uint32_t>(param.filter_radius),
                         static_cast<uint32_t>(param.shading_percent)};
    std::vector<uint8_t> inner[4];
    uint8_t* out[4];
    for (int k = 0; k < 4; ++k) {
        inner[k].resize(static_cast<size_t>(2 * table_w * table_h + 1));
        out[k] = inner[k].data();
    }
    lsc2d_otp_table(raw, param.width, param.height, out, static_cast<uint32_t>(table_w - 2),
                    static_cast<uint32_t>(table_h - 2), calib);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    isp_param_tag param{};
    const uint8_t generator = input.take<uint8_t>();
    param.isp_type = input.take<uint8_t>();
    param.bayer_pattern = input.take<uint8_t>();
    take_geometry(input, param);
    param.filter_radius = input.number();
    param.shading_percent = input.number();
    for (uint8_t& level : param.blc)
        level = input.take<uint8_t>();
    const int64_t table_w = table_nodes(param.width, param), table_h = table_nodes(param.height, param);
    const int64_t samples = elements_of(param.width, param.height), entries = elements_of(table_w, table_h);
    if (samples < 0 || entries < 0)
        return 0;
    std::vector<uint16_t> raw = input.buffer<uint16_t>(samples);
    const auto tables = take_tables(input, param, entries);
    if (generator % 3 == 0)
        bicubic_lnc_param_gen_orvel_otp(raw.data(), &param);
    else if (generator % 3 == 1)
        bicubic_lnc_param_gen_halvane(raw.data(), &param);
    else
        run_otp_table(raw.data(), param, table_w, table_h);
    return 0;
}
