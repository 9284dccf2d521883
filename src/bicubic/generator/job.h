// What both parameter generators do, step by step.
#pragma once

#include <cstdint>

#include "bicubic/generator/geometry.h"
#include "bicubic/generator/node_averages.h"
#include "frame/scratch.h"
#include "frame/view.h"
#include "zerklsc_driver.h"

namespace zerklsc {

// The memory of a call: three buffers, none of the size of the frame.
struct GeneratorJob {
    GeneratorGeometry geometry;
    View<const uint16_t> raw; // without an odd last column or row
    BlockSums sums;
    Scratch<double> averages; // one per node
};

// Finds out everything that can refuse the call of either generator and takes its memory; a refusal leaves
// everything untouched.
zerklsc_status prepare(const uint16_t* raw, const isp_param_tag* param, GeneratorJob& job);

// Whether the last average of a row stays at the last sample or is moved out to its node.
enum class LastNodes { as_measured, extended };

// What there is to say about the tables.
struct GeneratorFindings {
    int32_t extended_not_above_zero = 0; // last nodes of rows, over all colours
};

// Measures the four colours and fills the four tables, whose target keeps `corner_share` of the brightness of
// the image centre at the image corners.
GeneratorFindings fill_tables(const GeneratorJob& job, const isp_param_tag& param, double corner_share,
                              LastNodes last_nodes);

// Prints what was found, in lines of a fixed text.
void print_findings(const GeneratorFindings& findings, const isp_param_tag& param);

// What was found, and what the frame and the finished tables show beside it.
zerklsc_report make_report(const GeneratorJob& job, const isp_param_tag& param,
                           const GeneratorFindings& findings);

// The share that a record asks for.
constexpr double requested_share(const isp_param_tag& param) {
    return static_cast<uint32_t>(param.shading_percent) / 100.0;
}

} // namespace zerklsc
