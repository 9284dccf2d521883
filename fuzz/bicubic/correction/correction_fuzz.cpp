// Both ISP corrections with any record, on tables of exactly the size that each of them asks for.
#include "support/input.h"
#include "zerklsc.h"

namespace {

// Table entries along one direction. The tvessa2 ISP counts from the last sample, in steps of one byte.
int64_t table_nodes(int32_t size, int32_t step, bool tvessa2) {
    if (!tvessa2)
        return step == 0 ? 0 : (size + step - 1) / step + 3;
    step &= 0xFF;
    return step == 0 ? 0 : size == 0 ? 4 : (size - 1 + step - 1) / step + 3;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zerklsc::fuzz;
    Input input(data, size);
    isp_param_tag param{};
    const uint8_t choice = input.take<uint8_t>();
    const bool tvessa2 = (choice & 1) != 0, in_place = (choice & 2) != 0;
    take_geometry(input, param);
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
    std::vector<uint16_t> in = input.buffer<uint16_t>(samples), out(in.size());
    uint16_t* const to = in_place ? in.data() : out.data();
    if (tvessa2)
        bicubic_lnc_correction_tvessa2(in.data(), to, &param);
    else
        bicubic_lnc_correction_vessaL2(in.data(), to, &param);
    return 0;
}
