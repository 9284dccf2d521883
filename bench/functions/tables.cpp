// Tables of gains, and their streams.
#include "compress/forms.h"
#include "functions/functions.h"

namespace zerklsc::bench {

void add_borders(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    float* const bordered = in->bordered.data();
    uint16_t* const table = in->work.info.lsc_table[0];
    functions.add("lsc_table_ftoi", "node", nodes,
                  [=] { lsc_table_ftoi(bordered, table, table_w, table_h); });
    functions.add("lsc_table_itof", "node", nodes,
                  [=] { lsc_table_itof(table, bordered, table_w, table_h); });
    functions.add("format_lsc_table", "node", nodes, [=] { format_lsc_table(table, table_w, table_h); });
    functions.add("update_table_border", "node", nodes, [=] {
        done(update_table_border(in->inner.data(), bordered, plane_w, plane_h, step, step, grid_w, grid_h,
                                 linear, quadratic));
    });
    const struct {
        const char* name;
        decltype(&align_table_cubic_c1) align;
    } aligns[] = {{"align_table_cubic_c1", align_table_cubic_c1},
                  {"align_table_cubic_c2", align_table_cubic_c2}};
    for (const auto& [name, align] : aligns)
        functions.add(name, "node", nodes, [=, align = align] {
            align(bordered, grid_w, grid_h, table_w, plane_w, plane_h, step, step);
        });
    functions.add("align_table_linear", "node", nodes, [=] {
        done(align_table_linear(bordered, grid_w, grid_h, table_w, plane_w, plane_h, step, step));
    });
    functions.add("expand_lsc_table_c1", "node", nodes,
                  [=] { expand_lsc_table_c1(bordered, grid_w, grid_h); });
    functions.add("expand_lsc_table_c2(float*, int, int)", "node", nodes,
                  [=] { expand_lsc_table_c2(bordered, grid_w, grid_h); });
    functions.add("expand_lsc_table_c2(unsigned short*, int, int)", "node", nodes,
                  [=] { expand_lsc_table_c2(table, grid_w, grid_h); });
}

void add_tables(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    float* const bordered = in->bordered.data();
    uint16_t* const table = in->work.info.lsc_table[0];
    functions.add("lsc2d_table_preproc", "node", 4 * nodes, [=] {
        done(lsc2d_table_preproc(in->tables.info.lsc_table, in->work.info.lsc_table, plane_w, plane_h,
                                 table_w, table_h, &in->calib));
    });
    functions.add("lsc2d_table_postproc", "node", 4 * nodes, [=] {
        done(lsc2d_table_postproc(in->work.info.lsc_table, plane_w, plane_h, table_w, table_h, &in->calib));
    });
    functions.add("apply_shading_table", "node", nodes, [=] {
        apply_shading_table(table, plane_w, plane_h, step, step, table_w, table_h, &in->shading);
    });
    functions.add("calc_shading_table", "node", nodes, [=] {
        done(calc_shading_table(bordered, plane_w, plane_h, step, step, table_w, table_h, &in->shading));
    });
    uint16_t* const source = in->tables.info.lsc_table[0];
    functions.add("lsc2d_grid_convert", "node", nodes, [=] {
        const lsc2d_grid from = {source, step, step, grid_w, grid_h},
                         to = {table, step, step, grid_w, grid_h};
        done(lsc2d_grid_convert(&from, &to, plane_w, plane_h));
    });
    functions.add("lsc2d_table_mapping", "node", nodes, [=] {
        const lsc2d_table_desc from = {plane_w, plane_h, step, step, table_w, table_h, source};
        const lsc2d_table_desc to = {plane_w, plane_h, step, step, table_w, table_h, table};
        const lsc2d_crop crop = {8, 6, plane_w - 16, plane_h - 12};
        done(lsc2d_table_mapping(&from, &to, &crop));
    });
    functions.add("load_table(char const*, unsigned short*, int)", "node", nodes,
                  [=] { done(load_table(in->file.path, table, table_w * table_h)); });
}

void add_streams(Functions& functions) {
    Inputs* const in = functions.inputs.get();
    int16_t* const d = in->differences.data();
    functions.add("generate_bicubic_weight_table", "call", 1,
                  [=] { generate_bicubic_weight_table(&in->weights, step); });
    functions.add(
        "cubic_1D(unsigned short, unsigned short, unsigned short, unsigned short, unsigned short, unsigned "
        "short)",
        "call", calls, many([](uint16_t i) { return cubic_1D(1024, i, 2000, 1500, i % step, step); }));
    functions.add(
        "cubic_1D(unsigned short, unsigned short, unsigned short, unsigned short, unsigned short, unsigned "
        "short, lnc_bicubic_weight_t_64_tag*)",
        "call", calls,
        many([=](uint16_t i) { return cubic_1D(1024, i, 2000, 1500, i % step, step, &in->weights); }));
    functions.add("intra_cnl_diff", "node", n, [=] { done(intra_cnl_diff(d, grid_w, grid_h, 1, 0)); });
    functions.add("deintra_cnl_diff", "node", n, [=] { done(deintra_cnl_diff(d, grid_w, grid_h, 1, 0)); });
    functions.add("store_data", "node", n, [=] {
        done(store_data(in->stream.data(), d, d + n, d + 2 * n, d + 3 * n, grid_w, grid_h, 0));
    });
    functions.add("load_data", "node", n, [=] {
        done(load_data(in->stream.data(), d, d + n, d + 2 * n, d + 3 * n, grid_w, grid_h, 0));
    });
    functions.add(
        "lsc_compress", "node", 4 * n, [=] { done(lsc_compress(&in->otp)); },
        [=] { plain::compress(in->otp); });
    functions.add(
        "lsc_decompress", "node", 4 * n, [=] { done(lsc_decompress(&in->otp)); },
        [=] { plain::decompress(in->otp); });
}

} // namespace zerklsc::bench
