// bicubic_lnc_param_gen_orvel_otp
#include "bicubic/generator/job.h"
#include "bicubic/generator/colour_plane.h"
#include "zerklsc.h"

int32_t bicubic_lnc_param_gen_orvel_otp(uint16_t* raw, isp_param_tag* param) {
    using namespace zerklsc;
    GeneratorJob job{};
    if (!prepare(raw, param, job))
        return -1;
    warn_of_clipped_samples(job.raw, *param);
    fill_tables(job, *param, requested_share(*param), LastNodes::as_measured);
    return 0;
}
