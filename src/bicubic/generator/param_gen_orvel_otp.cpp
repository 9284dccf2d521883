// bicubic_lnc_param_gen_orvel_otp, zerklsc_generate_orvel_otp
#include "bicubic/generator/calls.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc;

GeneratorFindings generate(const GeneratorJob& job, const isp_param_tag& param) {
    return fill_tables(job, param, requested_share(param), LastNodes::as_measured);
}

} // namespace

int32_t bicubic_lnc_param_gen_orvel_otp(uint16_t* raw, isp_param_tag* param) {
    return generate_and_print(raw, param, prepare, generate);
}

zerklsc_status zerklsc_generate_orvel_otp(const uint16_t* raw, const isp_param_tag* param,
                                          zerklsc_report* report) {
    return generate_and_report(raw, param, report, prepare, generate);
}
