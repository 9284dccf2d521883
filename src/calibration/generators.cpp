// Calibration by the parameter generators.
#include "calibration/generators.h"

#include <algorithm>
#include <cstddef>

#include "frame/scratch.h"

namespace zerklsc {
namespace {

constexpr int32_t border = 2 * ZERKLSC_BORDER;

// Four tables of one size, one behind the other.
struct TableSet {
    Scratch<uint16_t> buffer;
    uint16_t* tables[ZERKLSC_CHANNELS] = {};

    TableSet(int32_t width, int32_t height)
        : buffer(allocate<uint16_t>(uint64_t{ZERKLSC_CHANNELS} * static_cast<uint64_t>(width)
                                    * static_cast<uint64_t>(height))) {
        for (ptrdiff_t c = 0; buffer != nullptr && c < ZERKLSC_CHANNELS; ++c)
            tables[c] = buffer.get() + c * width * height;
    }

    explicit operator bool() const { return buffer != nullptr; }
};

// What the conversion leaves alone, black levels and Bayer pattern among it, is 0 for the generators.
isp_param_tag generator_record(const lsc2d_info& info) {
    isp_param_tag isp{};
    lsc2d_info_to_isp_param(&info, &isp);
    return isp;
}

// Copies the nodes of a bordered table without their border.
void strip_border(const uint16_t* table, int32_t width, int32_t height, uint16_t* nodes) {
    for (ptrdiff_t row = ZERKLSC_BORDER; row < height - ZERKLSC_BORDER; ++row)
        nodes = std::copy_n(table + row * width + ZERKLSC_BORDER, width - border, nodes);
}

// Replaces the generator's own border and applies the shading model. Only a failed allocation is refused
// here, before a table is written.
bool finish_tables(const TableSet& staged, TableSet& nodes, Request& request) {
    const int32_t w = request.table_w;
    const int32_t h = request.table_h;
    for (int32_t c = 0; c < ZERKLSC_CHANNELS; ++c)
        strip_border(staged.tables[c], w, h, nodes.tables[c]);
    if (lsc2d_table_preproc(nodes.tables, request.tables, request.plane_w, request.plane_h, w, h,
                            &request.param)
        != 0)
        return false;
    return lsc2d_table_postproc(request.tables, request.plane_w, request.plane_h, w, h, &request.param) == 0;
}

} // namespace

zerklsc_status run_halvane(Request& request, const lsc2d_info& info, Generator& generate,
                           zerklsc_report* report) {
    isp_param_tag isp = generator_record(info);
    return generate(request.raw, &isp, report);
}

// The generator writes to tables of its own, so that a failed allocation leaves the caller's untouched.
zerklsc_status run_orvel_otp(Request& request, const lsc2d_info& info, Generator& generate,
                             zerklsc_report* report) {
    const TableSet staged(request.table_w, request.table_h);
    TableSet nodes(request.table_w - border, request.table_h - border);
    if (!staged || !nodes)
        return ZERKLSC_NO_MEMORY;
    lsc2d_info staged_info = info;
    std::copy_n(staged.tables, ZERKLSC_CHANNELS, staged_info.lsc_table);
    isp_param_tag isp = generator_record(staged_info);
    const zerklsc_status status = generate(request.raw, &isp, report);
    if (status != ZERKLSC_OK)
        return status;
    return finish_tables(staged, nodes, request) ? ZERKLSC_OK : ZERKLSC_NO_MEMORY;
}

} // namespace zerklsc
