#include "bicubic/generator/job.h"

#include <algorithm>
#include <cstdio>

#include "bicubic/generator/gains.h"
#include "bicubic/generator/target.h"
#include "frame/planes.h"
#include "table/wrapping_border.h"

namespace zerklsc {
namespace {

bool usable(const uint16_t* raw, const isp_param_tag* param, GeneratorGeometry& geometry) {
    return raw != nullptr && param != nullptr && param->bayer_pattern <= highest_bayer_pattern
           && all_given(param->lsc_table) && generator_geometry(*param, geometry);
}

// The corrections read the even row's odd column through record pointer 2 and the odd row's even column
// through pointer 1, so that is where these colours go.
View<uint16_t> table_of(const isp_param_tag& param, int32_t position, const GeneratorGeometry& geometry) {
    return packed_view(param.lsc_table[plane_of_pointer[position]], geometry.grid_w + 2 * ZERKLSC_BORDER,
                       geometry.grid_h + 2 * ZERKLSC_BORDER);
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

} // namespace

bool prepare(const uint16_t* raw, const isp_param_tag* param, GeneratorJob& job) {
    GeneratorGeometry& geometry = job.geometry;
    if (!usable(raw, param, geometry))
        return false;
    job.raw = {raw, 2 * geometry.width, 2 * geometry.height, param->width};
    job.sums.columns = allocate<int32_t>(geometry.width, 1);
    job.sums.leftward = allocate<int64_t>(geometry.width + 1, 1);
    job.averages = allocate<double>(geometry.grid_w, geometry.grid_h);
    if (!job.sums.columns || !job.sums.leftward || !job.averages)
        return false;
    doubled_margin = 2 * geometry.margin;
    return true;
}

void fill_tables(const GeneratorJob& job, const isp_param_tag& param, double corner_share,
                 LastNodes last_nodes) {
    const GeneratorGeometry& geometry = job.geometry;
    const View<double> averages = packed_view(job.averages.get(), geometry.grid_w, geometry.grid_h);
    const bool limited = param.isp_type == ZERKLSC_ISP_TVESSA2;
    Target target{};
    for (const Colour colour : {Gb, B, R, Gr}) {
        const Channel channel = channel_of(job.raw, param, colour);
        const double largest = block_averages(channel, geometry, job.sums, averages);
        if (colour == reference_colour)
            target = make_target(param, corner_share, largest);
        if (last_nodes == LastNodes::extended)
            extend_last_nodes(geometry, averages);
        const View<uint16_t> table = table_of(param, channel.position, geometry);
        write_gains(geometry, target, colour, largest, averages, gain_format(param.isp_type), table);
        fill_wrapping_border(table);
        // A border that fell below 0 has wrapped to a large number and becomes the highest gain.
        if (limited)
            format_lsc_table(table.data, table.width, table.height);
    }
    // The types without gains say so once for these and, as the types without a final limit, once for that.
    if (!has_gain_format(param.isp_type))
        std::puts("not support isp type!");
    if (!limited)
        std::puts("not support isp type!");
}

} // namespace zerklsc
