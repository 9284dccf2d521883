#include "bicubic/generator/job.h"

#include <algorithm>
#include <cstdio>

#include "bicubic/generator/clipped_samples.h"
#include "bicubic/generator/colour_plane.h"
#include "bicubic/generator/gains.h"
#include "bicubic/generator/target.h"
#include "frame/planes.h"
#include "table/inner_nodes.h"
#include "table/wrapping_border.h"

namespace zerklsc {
namespace {

zerklsc_status check(const uint16_t* raw, const isp_param_tag* param, GeneratorGeometry& geometry) {
    if (raw == nullptr || param == nullptr || !all_given(param->lsc_table))
        return ZERKLSC_NULL_POINTER;
    if (param->bayer_pattern > highest_bayer_pattern)
        return ZERKLSC_UNKNOWN_PATTERN;
    return generator_geometry(*param, geometry);
}

// The table of a plane: the corrections read it through the same pointer.
View<uint16_t> table_of(const isp_param_tag& param, int32_t plane, const GeneratorGeometry& geometry) {
    return packed_view(param.lsc_table[plane_of_pointer[plane]], geometry.grid_w + 2 * ZERKLSC_BORDER,
                       geometry.grid_h + 2 * ZERKLSC_BORDER);
}

// Only the ISP of type 3 has a limit of its own.
bool is_limited(const isp_param_tag& param) {
    return param.isp_type == ZERKLSC_ISP_TVESSA2;
}

// Gains of the inner nodes. The target stands on the nodes; one beyond the image stands one past its last
// sample.
void write_gains(const GeneratorGeometry& geometry, const Target& target, Colour colour, double largest,
                 View<double> averages, GainFormat format, View<uint16_t> table) {
    for (int32_t j = 0; j < geometry.grid_h; ++j) {
        const int32_t y = std::min(j * geometry.step, geometry.height);
        for (int32_t i = 0; i < geometry.grid_w; ++i) {
            const int32_t x = std::min(i * geometry.step, geometry.width);
            const double level = target_level(target, colour, largest, x, y);
            table.at(i + 1, j + 1) = generator_gain(level, averages.at(i, j), format);
        }
    }
}

// The border of the gains, and the limit of the hardware: a border that fell below 0 has wrapped to a large
// number and becomes the highest gain.
void finish_table(const isp_param_tag& param, View<uint16_t> table) {
    fill_wrapping_border(table);
    if (is_limited(param))
        format_lsc_table(table.data, table.width, table.height);
}

} // namespace

zerklsc_status prepare(const uint16_t* raw, const isp_param_tag* param, GeneratorJob& job) {
    GeneratorGeometry& geometry = job.geometry;
    const zerklsc_status status = check(raw, param, geometry);
    if (status != ZERKLSC_OK)
        return status;
    job.raw = {raw, 2 * geometry.width, 2 * geometry.height, param->width};
    if (!allocate_sums(geometry, job.sums))
        return ZERKLSC_NO_MEMORY;
    job.averages = allocate<double>(geometry.grid_w, geometry.grid_h);
    return job.averages != nullptr ? ZERKLSC_OK : ZERKLSC_NO_MEMORY;
}

GeneratorFindings fill_tables(const GeneratorJob& job, const isp_param_tag& param, double corner_share,
                              LastNodes last_nodes) {
    const GeneratorGeometry& geometry = job.geometry;
    const View<double> averages = packed_view(job.averages.get(), geometry.grid_w, geometry.grid_h);
    GeneratorFindings findings;
    Target target{};
    for (const Colour colour : {Gb, B, R, Gr}) {
        const ColourPlane plane = colour_plane(job.raw, param, colour);
        const double largest = measure_nodes(plane, geometry, job.sums, averages);
        if (colour == reference_colour)
            target = make_target(param, corner_share, largest);
        if (last_nodes == LastNodes::extended)
            findings.extended_not_above_zero += extend_last_nodes(geometry, averages);
        const View<uint16_t> table = table_of(param, plane.number, geometry);
        write_gains(geometry, target, colour, largest, averages, gain_format(param.isp_type), table);
        finish_table(param, table);
    }
    return findings;
}

zerklsc_report make_report(const GeneratorJob& job, const isp_param_tag& param,
                           const GeneratorFindings& findings) {
    zerklsc_report report{};
    for_each_clipped_sample(job.raw, param, [&report](int32_t plane) { ++report.clipped_samples[plane]; });
    const auto highest = static_cast<uint16_t>(gain_format(param.isp_type).highest);
    for (int32_t plane = 0; plane < ZERKLSC_CHANNELS; ++plane)
        report.capped_nodes[plane] = count_inner_nodes(table_of(param, plane, job.geometry), highest);
    report.dark_row_ends = static_cast<uint32_t>(findings.extended_not_above_zero);
    return report;
}

void print_findings(const GeneratorFindings& findings, const isp_param_tag& param) {
    for (int32_t n = 0; n < findings.extended_not_above_zero; ++n)
        std::puts("Warning:raw image data maybe wrong ");
    // The types without gains say so once for these and, as the types without a final limit, once for that.
    if (!has_gain_format(param.isp_type))
        std::puts("not support isp type!");
    if (!is_limited(param))
        std::puts("not support isp type!");
}

} // namespace zerklsc
