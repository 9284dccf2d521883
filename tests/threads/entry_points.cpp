#include "threads/entry_points.h"

#include <algorithm>

#include "support/random.h"

namespace zerklsc::testing {
namespace {

using W = Workbench;
constexpr int32_t w = W::plane_w, h = W::plane_h, s = W::step, gw = W::grid_w, gh = W::grid_h;
constexpr int32_t tw = W::table_w, th = W::table_h;

lsc_otp_info otp(W& b) {
    return {1, tw, th, {b.tables[0], b.tables[1], b.tables[2], b.tables[3]}, b.stream.data(), 0};
}

void generator(W& b, int32_t (*generate)(uint16_t*, isp_param_tag*)) {
    b.note(generate(b.frame.data(), &b.isp));
    b.note_tables();
    b.note(b.isp.corner_ratio);
}

void front_end(W& b, decltype(lsc2d_calibration_halvane)* calibrate) {
    uint32_t calib[8] = {s, 0, W::radius, 0, 0, 0, 0, 90};
    b.note(calibrate(b.frame.data(), W::width, W::height, b.tables, 0, 0, 2, calib));
    b.note_tables();
}

void correction(W& b, int32_t (*correct)(uint16_t*, uint16_t*, isp_param_tag*)) {
    b.note(correct(b.frame.data(), b.other.data(), &b.isp));
    b.note(b.other);
}

// The point list of a plane's centre cluster is given back to the heap by the caller's own call.
void centre_points(W& b) {
    pix_point* points = nullptr;
    int32_t count = 0;
    b.note(init_center_points(w, h, &points, &count));
    b.note(img_sample(b.planes[1], points, count, w, h, &b.filter));
    b.note(get_pixel_maximum(points, count));
    b.note(find_peak_intensity(b.planes[2], points, count, w, h, &b.filter));
    for (int32_t k = 0; k < count; ++k)
        b.note_fields<int16_t>(points[k]);
    release_center_points(points);
}

template <class T>
void inverse(W& b) {
    Random random(40);
    std::vector<T> a(40 * 40);
    for (T& v : a)
        v = static_cast<T>(random.unit() - 0.5);
    b.note(matrix_inv(a.data(), 40));
    b.note(a);
}

void aligned(W& b, void (*align)(float*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t)) {
    align(b.floats.data(), gw, gh, tw, w, h, s, s);
    b.note(b.floats);
}

void store_and_load(W& b) {
    b.note(store_data(b.stream.data(), b.words[0].data(), b.words[1].data(), b.words[2].data(),
                      b.words[3].data(), gw, gh, 0));
    b.note(load_data(b.stream.data(), b.words[0].data(), b.words[1].data(), b.words[2].data(),
                     b.words[3].data(), gw, gh, 0));
    b.note(b.stream);
    b.note(b.words[3]);
}

void differences(W& b) {
    b.note(intra_cnl_diff(b.words[0].data(), gw, gh, 1, 0));
    b.note(b.words[0]);
    b.note(deintra_cnl_diff(b.words[0].data(), gw, gh, 1, 0));
    b.note(b.words[0]);
}

void band(W& b) {
    constexpr size_t stride = W::width * sizeof(uint16_t);
    b.note(zerklsc_check_correction(&b.info));
    b.note(zerklsc_correct(&b.info, b.frame.data(), stride, b.other.data(), stride, 11, 50));
    b.note(b.other);
}

void stream_fit(W& b) {
    const lsc_otp_info info = otp(b);
    b.note(zerklsc_check_stream(&info));
    b.note(static_cast<int64_t>(zerklsc_stream_size(tw, th, 1)));
}

void reports(W& b) {
    zerklsc_report report{};
    b.note(zerklsc_generate_orvel_otp(b.frame.data(), &b.isp, &report));
    b.note_fields<uint32_t>(report);
    b.note_tables();
    b.isp.width = 120; // planes of 60 x 51
    b.note(zerklsc_generate_halvane(b.frame.data(), &b.isp, &report));
    b.note_fields<uint32_t>(report);
    b.note_tables();
}

template <int algorithm>
void silent_calibration(W& b) {
    zerklsc_report report{};
    b.info.algorithm = algorithm;
    b.note(zerklsc_check_calibration(&b.info));
    b.note(zerklsc_calibrate(b.frame.data(), &b.info, &report));
    b.note_fields<uint32_t>(report);
    b.note_tables();
}

void texts(W& b) {
    b.note(zerklsc_status_text(ZERKLSC_BAD_STEP)[0]);
    b.note(zerklsc_version() > 0);
}

void otp_stream(W& b) {
    lsc_otp_info info = otp(b);
    b.note(lsc_compress(&info));
    b.note(b.stream);
    b.note(lsc_decompress(&info));
    b.note_tables();
}

void otp_table(W& b) {
    uint32_t calib[3] = {s, W::radius, 90};
    uint8_t* out[4];
    for (int k = 0; k < 4; ++k)
        out[k] = reinterpret_cast<uint8_t*>(b.tables[k]);
    b.note(lsc2d_otp_table(b.frame.data(), W::width, W::height, out, gw, gh, calib));
    b.note_tables();
}

void converted_grids(W& b) {
    const lsc2d_grid from{b.tables[0], s, s, tw, th};
    const lsc2d_grid to{b.tables[1], 9, 10, 8, 7};
    b.note(lsc2d_grid_convert(&from, &to, w, h));
    const lsc2d_table_desc src{w, h, s, s, tw, th, b.tables[2]};
    const lsc2d_table_desc dst{w / 2, h / 2, 5, 4, 7, 8, b.tables[3]};
    const lsc2d_crop crop{2, 4, w - 6, h - 8};
    b.note(lsc2d_table_mapping(&src, &dst, &crop));
    b.note(pixel_position_mapping(3, 7, 20, 41));
    b.note_tables();
}

void masks(W& b) {
    float sigma = 1.5f;
    std::vector<int32_t> mask(49);
    int32_t sum = 0;
    const imfilter_t gaussian{ZERKLSC_FILTER_GAUSSIAN, 3, ZERKLSC_BOUNDARY_CLAMP, &sigma};
    b.note(get_filter_mask(&mask[24], &sum, &gaussian));
    b.note(mask);
    b.note(get_boundary_pos(10, -3, 0));
    b.note(img_filter(&b.plane[0][200], &b.plane[1][200], 30, 20, &gaussian));
    b.note(b.plane[1]);
}

void measured_tables(W& b) {
    b.note(img_sample_grid(b.planes[0], b.floats.data(), w, h, s, s, gw, gh, &b.filter));
    b.note(b.floats);
    b.note(calc_otp_table(b.planes[1], b.floats.data(), w, h, s, 9, gw, gh, 2));
    b.note(b.floats);
    b.note(calc_correction_table(b.planes[2], b.floats.data(), w, h, s, 9, gw, gh, &b.filter));
    b.note(b.floats);
}

void shading(W& b) {
    const shading_t model{ZERKLSC_SHADING_EXPONENTIAL, 85, 0};
    apply_shading_table(b.tables[0], w, h, s, s, tw, th, &model);
    b.note(calc_shading_table(b.floats.data(), w, h, s, s, tw, th, &model));
    b.note(lsc2d_table_preproc(b.tables, b.planes, w, h, tw, th, &b.param));
    b.note(lsc2d_table_postproc(b.planes, w, h, tw, th, &b.param));
    b.note(b.plane[0]);
    b.note(b.floats);
    b.note_tables();
}

void extrapolated_tables(W& b) {
    lsc_table_itof(b.tables[0], b.floats.data(), tw, th);
    b.note(update_table_border(b.floats.data(), b.more_floats.data(), w, h, s, s, gw, gh, 1, 1));
    lsc_table_ftoi(b.more_floats.data(), b.tables[1], tw, th);
    format_lsc_table(b.tables[1], tw, th);
    expand_lsc_table_c1(b.floats.data(), gw, gh);
    expand_lsc_table_c2(b.more_floats.data(), gw, gh);
    expand_lsc_table_c2(b.tables[2], tw, th);
    b.note(b.floats);
    b.note(b.more_floats);
    b.note_tables();
}

void cubic(W& b) {
    generate_bicubic_weight_table(&b.info.weight, s);
    b.note_fields<int16_t>(b.info.weight);
    b.note(cubic_1D(1100, 1200, 1400, 1300, 3, 8, &b.info.weight));
    b.note(cubic_1D(1100, 1200, 1400, 1300, 3, 8));
    b.note(get_cubic_coef(0.3f));
}

void mosaics(W& b) {
    bayer_split_channel(b.frame.data(), b.planes, W::width, W::height);
    b.note(bayer_merge_channel(b.other.data(), b.planes, W::width, W::height));
    const isp_blc_param black{W::width, W::height, {3, 5, 7, 9}};
    isp_blc_process(b.other.data(), &black);
    b.note(bayer_rotation(b.other.data(), W::width, W::height));
    b.note(b.other);
}

void records(W& b) {
    lsc2d_calib_param_default(&b.param, s, 2, 90);
    lsc2d_info_to_isp_param(&b.info, &b.isp);
    isp_param_to_lsc2d_info(&b.info, &b.isp);
    std::vector<int32_t> sizes(4);
    lsc2d_grid_samples(w, h, s, s, &sizes[0], &sizes[1]);
    lsc2d_table_size(w, h, s, s, &sizes[2], &sizes[3]);
    b.note(sizes);
    b.note_fields<int32_t>(b.param);
    b.note(b.info.grid);
    pix_point points[6] = {};
    uint16_t xs[3] = {1, 5, 9}, ys[2] = {2, 4};
    meshgrid(points, xs, ys, 3, 2);
    for (const pix_point& point : points)
        b.note_fields<int16_t>(point);
    b.note(load_table("/dev/null", b.tables[3], 4));
}

template <int algorithm>
void calibration(W& b) {
    b.info.algorithm = algorithm;
    b.note(lsc2d_calibration_wrapper(b.frame.data(), &b.info));
    b.note_tables();
}

constexpr EntryPoint all[] = {
    {"lsc2d_calib_param_default lsc2d_info_to_isp_param isp_param_to_lsc2d_info lsc2d_grid_samples "
     "lsc2d_table_size meshgrid _Z10load_tablePKcPti",
     records},
    {"bayer_split_channel bayer_merge_channel isp_blc_process _Z14bayer_rotationPtii", mosaics},
    {"init_center_points img_sample get_pixel_maximum release_center_points "
     "_Z19find_peak_intensityPtP9pix_pointiiiP10imfilter_t",
     centre_points},
    {"get_filter_mask _Z16get_boundary_posiii img_filter", masks},
    {"img_sample_grid calc_otp_table calc_correction_table", measured_tables},
    {"lsc2d_calibration_wrapper", calibration<ZERKLSC_ALGORITHM_HALVANE>},
    {"lsc2d_calibration_wrapper", calibration<ZERKLSC_ALGORITHM_ORVEL_OTP>},
    {"lsc2d_calibration_wrapper", calibration<ZERKLSC_ALGORITHM_ORVEL_WEIGHTS>},
    {"lsc2d_calibration_orvel",
     [](W& b) {
         b.note(lsc2d_calibration_orvel(b.frame.data(), W::width, W::height, b.tables, tw, th, &b.param));
         b.note_tables();
     }},
    {"lsc2d_calibration_beta",
     [](W& b) {
         b.note(lsc2d_calibration_beta(b.frame.data(), W::width, W::height, b.tables, tw, th, &b.param));
         b.note_tables();
     }},
    {"_Z10matrix_invIfEiPT_i", inverse<float>},
    {"_Z10matrix_invIdEiPT_i", inverse<double>},
    {"lsc_table_itof update_table_border lsc_table_ftoi format_lsc_table expand_lsc_table_c1 "
     "_Z19expand_lsc_table_c2Pfii _Z19expand_lsc_table_c2Ptii",
     extrapolated_tables},
    {"apply_shading_table calc_shading_table lsc2d_table_preproc lsc2d_table_postproc", shading},
    {"lsc2d_grid_convert lsc2d_table_mapping pixel_position_mapping", converted_grids},
    {"align_table_linear",
     [](W& b) {
         b.note(align_table_linear(b.floats.data(), gw, gh, tw, w, h, s, s));
         b.note(b.floats);
     }},
    {"align_table_cubic_c1", [](W& b) { aligned(b, align_table_cubic_c1); }},
    {"align_table_cubic_c2", [](W& b) { aligned(b, align_table_cubic_c2); }},
    {"lsc2d_bicubic_correction",
     [](W& b) {
         lsc2d_bicubic_correction(b.planes[0], b.planes[1], w, h, b.tables[0], s, s, tw);
         b.note(b.plane[1]);
     }},
    {"generate_bicubic_weight_table _Z8cubic_1DttttttP27lnc_bicubic_weight_t_64_tag _Z8cubic_1Dtttttt "
     "get_cubic_coef",
     cubic},
    {"bicubic_lnc_correction_vessaL2", [](W& b) { correction(b, bicubic_lnc_correction_vessaL2); }},
    {"bicubic_lnc_correction_vessaL2_core", [](W& b) { correction(b, bicubic_lnc_correction_vessaL2_core); }},
    {"bicubic_lnc_correction_tvessa2", [](W& b) { correction(b, bicubic_lnc_correction_tvessa2); }},
    {"lsc2d_correction_wrapper",
     [](W& b) {
         b.note(lsc2d_correction_wrapper(b.frame.data(), b.other.data(), &b.info));
         b.note(b.other);
     }},
    {"bicubic_lnc_param_gen_orvel_otp", [](W& b) { generator(b, bicubic_lnc_param_gen_orvel_otp); }},
    {"bicubic_lnc_param_gen_halvane", [](W& b) { generator(b, bicubic_lnc_param_gen_halvane); }},
    {"lsc2d_calibration_orvel_otp", [](W& b) { front_end(b, lsc2d_calibration_orvel_otp); }},
    {"lsc2d_calibration_halvane", [](W& b) { front_end(b, lsc2d_calibration_halvane); }},
    {"lsc2d_otp_table", otp_table},
    {"intra_cnl_diff deintra_cnl_diff", differences},
    {"store_data load_data", store_and_load},
    {"lsc_compress lsc_decompress", otp_stream},
    {"zerklsc_check_correction zerklsc_correct", band},
    {"zerklsc_check_stream zerklsc_stream_size", stream_fit},
    {"zerklsc_generate_orvel_otp zerklsc_generate_halvane", reports},
    {"zerklsc_check_calibration zerklsc_calibrate", silent_calibration<ZERKLSC_ALGORITHM_HALVANE>},
    {"zerklsc_check_calibration zerklsc_calibrate", silent_calibration<ZERKLSC_ALGORITHM_ORVEL>},
    {"zerklsc_check_calibration zerklsc_calibrate", silent_calibration<ZERKLSC_ALGORITHM_BETA>},
    {"zerklsc_status_text zerklsc_version", texts},
};

} // namespace

Workbench::Workbench(uint64_t seed) : floats(400), more_floats(400), stream(400) {
    Random random(seed);
    for (std::vector<uint16_t>* samples : {&frame, &other}) {
        samples->resize(width * height);
        for (uint16_t& v : *samples)
            v = static_cast<uint16_t>(random.between(300, 1000));
    }
    for (int k = 0; k < 4; ++k) {
        plane[k].resize(width * height / 4);
        for (uint16_t& v : plane[k])
            v = static_cast<uint16_t>(random.between(300, 1000));
        planes[k] = plane[k].data();
        table[k].resize(400);
        for (uint16_t& v : table[k])
            v = static_cast<uint16_t>(random.between(1024, 4000));
        tables[k] = table[k].data();
        words[k].resize(100);
        for (int16_t& v : words[k])
            v = static_cast<int16_t>(random.between(-8, 8));
    }
    for (std::vector<float>* values : {&floats, &more_floats})
        std::generate(values->begin(), values->end(), [&] { return static_cast<float>(1 + random.unit()); });
    info.width = width;
    info.height = height;
    info.grid = step;
    info.shading_percent = 90;
    info.filter_radius = radius;
    std::copy_n(tables, 4, info.lsc_table);
    generate_bicubic_weight_table(&info.weight, step);
    lsc2d_info_to_isp_param(&info, &isp);
    isp.bayer_pattern = 1;
    isp.isp_type = 3;
    lsc2d_calib_param_default(&param, step, radius, 90);
}

void Workbench::note_tables() {
    for (const std::vector<uint16_t>& t : table)
        note(t);
}

std::span<const EntryPoint> entry_points() {
    return all;
}

} // namespace zerklsc::testing
