// bicubic_lnc_param_gen_orvel_otp
#include "bicubic/generator/clipped_samples.h"
#include "bicubic/generator/job.h"
#include "zerklsc.h"

int32_t bicubic_lnc_param_gen_orvel_otp(uint16_t* raw, isp_param_tag* param) {
    using namespace zerklsc;
    GeneratorJob job{};
    if (!prepare(raw, param, job))
        return -1;
    print_clipped_samples(job.raw, *param);
    print_findings(fill_tables(job, *param, requested_share(*param), LastNodes::as_measured), *param);
    return 0;
}
