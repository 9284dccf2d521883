// Both ISP corrections with any record, at any instruction set, on tables of exactly the size that each of
// them asks for, against their plain form.
#include "bicubic/correction/correction.h"
#include "support/hold_to.h"
#include "support/input.h"

namespace {

using namespace zerklsc::fuzz;

// Table entries along one direction. The tvessa2 ISP counts from the last sample, in steps of one byte.
int64_t table_nodes(int32_t size, int32_t step, bool tvessa2) {
    if (!tvessa2)
        return step == 0 ? 0 : (size + step - 1) / step + 3;
    step &= 0xFF;
    return step == 0 ? 0 : size == 0 ? 4 : (size - 1 + step - 1) / step + 3;
}

// The record's own weights are used by the core function alone: most of them overflow.
using Correct = int32_t (*)(uint16_t*, uint16_t*, isp_param_tag*);
Correct function_of(bool tvessa2, bool own_weights) {
    if (tvessa2)
        return bicubic_lnc_correction_tvessa2;
    return own_weights ? bicubic_lnc_correction_vessaL2_core : bicubic_lnc_correction_vessaL2;
}

// After the call, which makes the weights that it uses.
void correct_plainly(const uint16_t* in, uint16_t* out, const isp_param_tag& param, bool tvessa2) {
    const int32_t step = tvessa2 ? param.grid & 0xFF : param.grid;
    if (step == 0 || step > zerklsc::highest_step)
        return;
    const auto make = tvessa2 ? zerklsc::tvessa2_correction : zerklsc::vessal2_correction;
    zerklsc::plain::correct(make(in, out, param));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    isp_param_tag param{};
    const uint8_t choice = input.take<uint8_t>();
    const bool tvessa2 = (choice & 1) != 0, in_place = (choice & 2) != 0, own_weights = (choice & 4) != 0;
    hold_to(choice / 8);
    take_geometry(input, param);
    if (own_weights)
        param.weight = input.take<lnc_bicubic_weight_t_64_tag>();
    const int64_t entries = elements_of(table_nodes(param.width / 2, param.grid, tvessa2),
                                        table_nodes(param.height / 2, param.grid, tvessa2));
    const int64_t samples = elements_of(param.width, param.height);
    if (samples < 0 || entries < 0)
        return 0;
    const auto tables = take_tables(input, param, entries);
    // A null table is refused; one without entries is not null.
    uint16_t none = 0;
    for (uint16_t*& table : param.lsc_table)
        table = entries == 0 ? &none : table;
    std::vector<uint16_t> in = input.buffer<uint16_t>(samples);
    const std::vector<uint16_t> before = in;
    std::vector<uint16_t> out(in.size(), 7), expected = in_place ? before : out;
    std::vector<uint16_t>& to = in_place ? in : out;
    function_of(tvessa2, own_weights)(in.data(), to.data(), &param);
    if (samples != 0)
        correct_plainly(before.data(), expected.data(), param, tvessa2);
    expect(to == expected);
    return 0;
}
