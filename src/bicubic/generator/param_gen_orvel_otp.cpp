// bicubic_lnc_param_gen_orvel_otp, zerklsc_generate_orvel_otp
#include "bicubic/generator/clipped_samples.h"
#include "bicubic/generator/gains.h"
#include "bicubic/generator/job.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc;

GeneratorFindings generate(const GeneratorJob& job, const isp_param_tag& param) {
    return fill_tables(job, param, requested_share(param), LastNodes::as_measured);
}

} // namespace

int32_t bicubic_lnc_param_gen_orvel_otp(uint16_t* raw, isp_param_tag* param) {
    GeneratorJob job{};
    if (prepare(raw, param, job) != ZERKLSC_OK)
        return -1;
    print_clipped_samples(job.raw, *param);
    print_findings(generate(job, *param), *param);
    return 0;
}

zerklsc_status zerklsc_generate_orvel_otp(const uint16_t* raw, const isp_param_tag* param,
                                          zerklsc_report* report) {
    GeneratorJob job{};
    const zerklsc_status status = prepare(raw, param, job);
    if (status != ZERKLSC_OK)
        return status;
    if (!has_gain_format(param->isp_type))
        return ZERKLSC_UNKNOWN_ISP;
    const GeneratorFindings findings = generate(job, *param);
    if (report != nullptr)
        *report = make_report(job, *param, findings);
    return ZERKLSC_OK;
}
