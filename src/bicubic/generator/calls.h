// The two ways to call a parameter generator. Both take prepare(raw, param, job), which refuses, and
// generate(job, *param), which fills the tables and gives its findings.
#pragma once

#include "bicubic/generator/clipped_samples.h"
#include "bicubic/generator/gains.h"
#include "bicubic/generator/job.h"

namespace zerklsc {

// Prints what there is to say.
template <class Prepare, class Generate>
int32_t generate_and_print(const uint16_t* raw, isp_param_tag* param, Prepare prepare, Generate generate) {
    GeneratorJob job{};
    if (prepare(raw, param, job) != ZERKLSC_OK)
        return -1;
    print_clipped_samples(job.raw, *param);
    print_findings(generate(job, *param), *param);
    return 0;
}

// Counts it, where the caller wants to know.
template <class Param, class Prepare, class Generate>
zerklsc_status generate_and_report(const uint16_t* raw, Param* param, zerklsc_report* report, Prepare prepare,
                                   Generate generate) {
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

} // namespace zerklsc
