#include "support/entry_points.h"

#include <algorithm>
#include <cmath>

namespace zerklsc::testing {
namespace {

using W = Workbench;
constexpr double upper_bound = HUGE_VAL;

int32_t records(W& b) {
    lsc2d_calib_param_default(b.written.put(lsc2d_calib_param{}), b.s, b.r, 90);
    int32_t* const sizes = b.written.put(std::vector<int32_t>(4));
    lsc2d_grid_samples(b.w, b.h, b.s, b.s, &sizes[0], &sizes[1]);
    lsc2d_table_size(b.w, b.h, b.s, b.s, &sizes[2], &sizes[3]);
    lsc2d_info_to_isp_param(b.info(2, b.tables), b.out_isp);
    isp_param_to_lsc2d_info(b.out_info, b.isp(b.tables));
    return 0;
}

int32_t black_level(W& b) {
    isp_blc_process(b.frame, b.read.put(isp_blc_param{b.width, b.height, {3, 5, 7, 9}}));
    return 0;
}

int32_t centre_points(W& b) {
    pix_point* points = nullptr;
    int32_t count = 0;
    if (init_center_points(b.w, b.h, &points, &count) != 0)
        return -1;
    const int32_t status = img_sample(b.planes[1], points, count, b.w, b.h, b.box);
    if (status == 0)
        b.written.put(std::vector<pix_point>(points, points + count));
    release_center_points(points);
    return status;
}

int32_t samples(W& b, const imfilter_t* filter) {
    return img_sample_grid(b.planes[0], b.out_floats, b.w, b.h, b.s, b.s, b.gw, b.gh, filter);
}

int32_t filtered(W& b, const imfilter_t* filter) {
    const int32_t stride = b.s + 40;
    return img_filter(b.planes[0] + b.r * (stride + 1), b.out_planes[0], stride, b.s, filter);
}

template <int algorithm>
int32_t calibrated(W& b) {
    return lsc2d_calibration_wrapper(b.raw, algorithm == 4 ? b.out_info : b.info(algorithm, b.out_tables));
}

template <int algorithm>
int32_t reported(W& b) {
    return zerklsc_calibrate(b.raw, algorithm == 4 ? b.out_info : b.info(algorithm, b.out_tables), b.report);
}

template <int algorithm>
int32_t checked(W& b) {
    return zerklsc_check_calibration(b.info(algorithm, b.out_tables));
}

// From a grid with fewer nodes.
int32_t converted(W& b) {
    lsc2d_grid from{b.tables[0], b.s + 1, b.s + 2, 0, 0};
    lsc2d_grid_samples(b.w, b.h, from.step_x, from.step_y, &from.grid_w, &from.grid_h);
    const lsc2d_grid to{b.out_tables[0], b.s, b.s, b.gw, b.gh};
    return lsc2d_grid_convert(b.read.put(from), b.read.put(to), b.w, b.h);
}

int32_t mapped(W& b) {
    const auto u = [](int32_t v) { return static_cast<uint16_t>(v); };
    const lsc2d_table_desc from{u(b.w), u(b.h), u(b.s), u(b.s), u(b.tw), u(b.th), b.tables[0]};
    const lsc2d_table_desc to{u(b.w - 3), u(b.h / 2), u(b.s), u(b.s - 2), u(b.tw), u(b.th), b.out_tables[0]};
    const lsc2d_crop crop{2, 4, u(b.w - 6), u(b.h - 8)};
    return lsc2d_table_mapping(b.read.put(from), b.read.put(to), b.read.put(crop));
}

int32_t weights(W& b) {
    lnc_bicubic_weight_t_64_tag made;
    generate_bicubic_weight_table(&made, static_cast<uint16_t>(b.s));
    generate_bicubic_weight_table(b.written.put(lnc_bicubic_weight_t_64_tag{}), static_cast<uint16_t>(b.s));
    *b.out_floats = get_cubic_coef(0.3f);
    return 65536 * cubic_1D(1100, 1200, 1400, 1300, 3, 8)
           + cubic_1D(1100, 1200, 1400, 1300, 3, 8, b.read.put(made));
}

// In rows 11 to 60 only.
int32_t band(W& b) {
    const size_t stride = sizeof(uint16_t) * static_cast<size_t>(b.width);
    const lsc2d_info* const info = b.info(2, b.tables);
    return 64 * zerklsc_check_correction(info)
           + zerklsc_correct(info, b.raw, stride, b.frame, stride, 11, 50);
}

int32_t otp_table(W& b) {
    uint8_t* out[4];
    std::transform(b.out_tables, b.out_tables + 4, out,
                   [](uint16_t* t) { return reinterpret_cast<uint8_t*>(t); });
    uint32_t* const calib = b.read.put(std::vector<uint32_t>{b.calib[0], b.calib[2], b.calib[7]});
    return lsc2d_otp_table(b.raw, b.width, b.height, out, static_cast<uint32_t>(b.gw),
                           static_cast<uint32_t>(b.gh), calib);
}

int32_t meshes(W& b) { // the two lists may overlap
    uint16_t* const list = b.read.put(std::vector<uint16_t>{1, 5, 9, 70});
    meshgrid(b.points, list, list + 1, 4, 3);
    return 0;
}

int64_t nothing(const W&) {
    return 0;
}

int64_t plane_sums(const W& b) {
    return 4 * (b.r + 1) + 40 * b.n() + 4 * (b.w + 1);
}

int64_t cluster(const W& b) {
    pix_point* points = nullptr;
    int32_t count = 0;
    init_center_points(b.w, b.h, &points, &count);
    release_center_points(points);
    return count;
}

int64_t measured_memory(const W& b) {
    const int64_t shared = b.shares_rows ? 40 * std::max(b.n(), cluster(b)) + 4 * (b.w + 1) : 0;
    return 4 * b.n() + 2 * b.w + 20 * (b.r + 1) + 64 + shared;
}

int64_t sampled_memory(const W& b) {
    const int64_t shared = b.shares_rows ? 64 * std::max(b.n(), cluster(b)) + 8 * (b.w + 1) : 0;
    return 20 * b.n() + 4 * b.e() + 4 * b.w + 40 * b.r + 128 + shared;
}

int64_t inversion_memory(int64_t n, int64_t element) {
    const int64_t group = 256 / element, rows = (n + 3) / 4 * 4, columns = (n + group - 1) / group * group;
    return rows * columns * element * 1009 / 1000 + (26 * rows + 24 * columns) * element + 16 * n + 64;
}

// A raster has fewer lines than 16 to a cell at either end, 4 to each in between, and the centre.
int64_t fit_memory(const W& b) {
    const int64_t m = b.n(), lines = 64 + 4 * (b.tw + b.th);
    return 8 * m * m + 48 * m + inversion_memory(m, 8) + 64 * lines;
}

int64_t generator_memory(const W& b) {
    return 8 * b.n() + 12 * b.w + 8;
}

int64_t table_memory(const W& b) {
    return 4 * b.n() + 4 * b.e();
}

int64_t stream_memory(const W& b) {
    return 16 * b.n() + 32 * b.tw + 1024;
}

using enum Heap;
constexpr EntryPoint all[] = {
    {"lsc2d_calib_param_default lsc2d_info_to_isp_param isp_param_to_lsc2d_info lsc2d_grid_samples "
     "lsc2d_table_size",
     records},
    {"bayer_split_channel",
     [](W& b) { return bayer_split_channel(b.raw, b.out_planes, b.width, b.height), 0; }},
    {"bayer_merge_channel", [](W& b) { return bayer_merge_channel(b.frame, b.planes, b.width, b.height); }},
    {"isp_blc_process", black_level},
    {"_Z14bayer_rotationPtii", [](W& b) { return bayer_rotation(b.frame, b.width, b.height); }, left,
     [](const W& b) { return int64_t{2} * b.width * b.height; }},
    {"init_center_points img_sample get_pixel_maximum release_center_points", centre_points, taken},
    {"img_sample", [](W& b) { return img_sample(b.planes[0], b.points, 12, b.w, b.h, b.box); }, little,
     [](const W& b) { return int64_t{4} * (b.r + 1); }},
    {"_Z19find_peak_intensityPtP9pix_pointiiiP10imfilter_t",
     [](W& b) -> int32_t { return find_peak_intensity(b.planes[2], b.points, 12, b.w, b.h, b.disc); },
     spared},
    {"get_pixel_maximum", [](W& b) { return get_pixel_maximum(b.points, 12); }},
    {"get_filter_mask",
     [](W& b) { return get_filter_mask(b.mask + 2 * b.r * (b.r + 1), b.mask_sum, b.disc); }},
    {"_Z16get_boundary_posiii", [](W& b) { return get_boundary_pos(b.w, -3, 0); }},
    {"img_filter", [](W& b) { return filtered(b, b.box); }, taken,
     [](const W& b) { return int64_t{12} * (b.s + b.r) + 640; }, upper_bound},
    {"img_filter", [](W& b) { return filtered(b, b.disc); }, taken,
     [](const W& b) { return (int64_t{8} * (b.s + 2 * b.r + 1) + 16) * (2 * b.r + 1) + 4 * (b.r + 1); }, 2.5},
    {"img_sample_grid", [](W& b) { return samples(b, b.box); }, taken, plane_sums, upper_bound},
    {"img_sample_grid", [](W& b) { return samples(b, b.disc); }, spared},
    {"calc_otp_table",
     [](W& b) { return calc_otp_table(b.planes[1], b.out_floats, b.w, b.h, b.s, b.s + 1, b.gw, b.gh, b.r); },
     left, measured_memory, 2},
    {"calc_correction_table",
     [](W& b) {
         return calc_correction_table(b.planes[2], b.out_floats, b.w, b.h, b.s, b.s, b.gw, b.gh, b.box);
     },
     left, measured_memory, 2},
    {"lsc2d_calibration_wrapper", calibrated<0>, taken, generator_memory},
    {"lsc2d_calibration_wrapper", calibrated<1>, taken,
     [](const W& b) { return 12 * b.e() + 8 * b.n() + generator_memory(b); }, 1.5},
    {"lsc2d_calibration_wrapper", calibrated<2>, left, sampled_memory, 1.5},
    {"lsc2d_calibration_wrapper", calibrated<3>, taken, fit_memory, 2},
    {"lsc2d_calibration_wrapper", calibrated<4>, left, sampled_memory, 1.5},
    {"zerklsc_calibrate", reported<0>, taken},
    {"zerklsc_calibrate", reported<1>, taken},
    {"zerklsc_calibrate", reported<2>, taken},
    {"zerklsc_calibrate", reported<3>, taken},
    {"zerklsc_calibrate", reported<4>, taken},
    {"zerklsc_check_calibration",
     [](W& b) { return checked<0>(b) | checked<1>(b) | checked<2>(b) | checked<4>(b); }, little, nothing},
    {"zerklsc_check_calibration", checked<3>, taken, fit_memory, 2},
    {"lsc2d_calibration_orvel",
     [](W& b) {
         return lsc2d_calibration_orvel(b.raw, b.width, b.height, b.out_tables, b.tw, b.th, b.param);
     },
     left, sampled_memory, 1.5},
    {"lsc2d_calibration_beta",
     [](W& b) { return lsc2d_calibration_beta(b.raw, b.width, b.height, b.out_tables, b.tw, b.th, b.param); },
     taken, fit_memory, 2},
    {"meshgrid", meshes},
    {"_Z10matrix_invIfEiPT_i", [](W& b) { return matrix_inv(b.matrix, b.order); }, taken,
     [](const W& b) { return inversion_memory(b.order, 4); }, 1.03},
    {"_Z10matrix_invIdEiPT_i", [](W& b) { return matrix_inv(b.wide_matrix, b.order); }, taken,
     [](const W& b) { return inversion_memory(b.order, 8); }, 1.03},
    {"_Z10load_tablePKcPti", [](W& b) { return load_table("/dev/null", b.out_tables[0], 4); }},
    {"lsc_table_ftoi", [](W& b) { return lsc_table_ftoi(b.floats, b.out_tables[0], b.tw, b.th), 0; }},
    {"lsc_table_itof", [](W& b) { return lsc_table_itof(b.tables[0], b.out_floats, b.tw, b.th), 0; }},
    {"format_lsc_table", [](W& b) { return format_lsc_table(b.out_tables[0], b.tw, b.th), 0; }},
    {"update_table_border",
     [](W& b) { return update_table_border(b.floats, b.out_floats, b.w, b.h, b.s, b.s, b.gw, b.gh, 3, 1); }},
    {"lsc2d_table_preproc",
     [](W& b) { return lsc2d_table_preproc(b.tables, b.out_tables, b.w, b.h, b.tw, b.th, b.param); }, taken,
     table_memory},
    {"lsc2d_table_postproc",
     [](W& b) { return lsc2d_table_postproc(b.out_tables, b.w, b.h, b.tw, b.th, b.param); }},
    {"apply_shading_table",
     [](W& b) { return apply_shading_table(b.out_tables[0], b.w, b.h, b.s, b.s, b.tw, b.th, b.model), 0; }},
    {"calc_shading_table",
     [](W& b) { return calc_shading_table(b.out_floats, b.w, b.h, b.s, b.s, b.tw, b.th, b.model); }},
    {"lsc2d_grid_convert", converted, taken, table_memory},
    {"lsc2d_table_mapping", mapped, taken, table_memory},
    {"pixel_position_mapping", [](W&) -> int32_t { return pixel_position_mapping(3, 7, 20, 41); }},
    {"lsc2d_bicubic_correction",
     [](W& b) {
         lsc2d_bicubic_correction(b.planes[0], b.out_planes[0], b.w, b.h, b.tables[0], b.s, b.s, b.tw);
         return 0;
     },
     spared, [](const W& b) { return b.w > 256 ? int64_t{32} * b.w : 0; }},
    {"expand_lsc_table_c1", [](W& b) { return expand_lsc_table_c1(b.out_floats, b.gw, b.gh), 0; }},
    {"_Z19expand_lsc_table_c2Pfii", [](W& b) { return expand_lsc_table_c2(b.out_floats, b.gw, b.gh), 0; }},
    {"_Z19expand_lsc_table_c2Ptii", [](W& b) { return expand_lsc_table_c2(b.out_tables[0], b.gw, b.gh), 0; }},
    {"align_table_linear",
     [](W& b) { return align_table_linear(b.out_floats, b.gw, b.gh, b.tw, b.w, b.h, b.s, b.s); }},
    {"align_table_cubic_c1",
     [](W& b) { return align_table_cubic_c1(b.out_floats, b.gw, b.gh, b.tw, b.w, b.h, b.s, b.s), 0; }},
    {"align_table_cubic_c2",
     [](W& b) { return align_table_cubic_c2(b.out_floats, b.gw, b.gh, b.tw, b.w, b.h, b.s, b.s), 0; }},
    {"generate_bicubic_weight_table _Z8cubic_1DttttttP27lnc_bicubic_weight_t_64_tag _Z8cubic_1Dtttttt "
     "get_cubic_coef",
     weights},
    {"bicubic_lnc_correction_vessaL2",
     [](W& b) {
         *b.out_isp = *b.isp(b.tables);
         return bicubic_lnc_correction_vessaL2(b.raw, b.frame, b.out_isp);
     }},
    {"bicubic_lnc_correction_vessaL2_core",
     [](W& b) { return bicubic_lnc_correction_vessaL2_core(b.raw, b.frame, b.isp(b.tables)); }},
    {"bicubic_lnc_correction_tvessa2",
     [](W& b) { return bicubic_lnc_correction_tvessa2(b.raw, b.frame, b.isp(b.tables)); }},
    {"lsc2d_correction_wrapper",
     [](W& b) { return lsc2d_correction_wrapper(b.raw, b.frame, b.info(2, b.tables)); }, little, nothing},
    {"lsc2d_correction_wrapper",
     [](W& b) { return lsc2d_correction_wrapper(b.raw, b.frame, b.info(4, b.tables)); }, little, nothing},
    {"zerklsc_check_correction zerklsc_correct", band},
    {"bicubic_lnc_param_gen_orvel_otp",
     [](W& b) { return bicubic_lnc_param_gen_orvel_otp(b.raw, b.isp(b.out_tables)); }, taken,
     generator_memory},
    {"bicubic_lnc_param_gen_halvane", [](W& b) { return bicubic_lnc_param_gen_halvane(b.raw, b.out_isp); },
     taken, generator_memory},
    {"zerklsc_generate_orvel_otp",
     [](W& b) -> int32_t { return zerklsc_generate_orvel_otp(b.raw, b.isp(b.out_tables), b.report); }, taken},
    {"zerklsc_generate_halvane",
     [](W& b) -> int32_t { return zerklsc_generate_halvane(b.raw, b.out_isp, b.report); }, taken},
    {"lsc2d_calibration_orvel_otp",
     [](W& b) {
         return lsc2d_calibration_orvel_otp(b.raw, b.width, b.height, b.out_tables, 0, 0, 2, b.calib);
     },
     taken, generator_memory},
    {"lsc2d_calibration_halvane",
     [](W& b) { return lsc2d_calibration_halvane(b.raw, b.width, b.height, b.out_tables, 0, 0, 2, b.calib); },
     taken, generator_memory},
    {"lsc2d_otp_table", otp_table, taken, [](const W& b) { return 8 * b.e() + generator_memory(b); }},
    {"intra_cnl_diff", [](W& b) { return intra_cnl_diff(b.out_words[0], b.gw, b.gh, 1, 0); }},
    {"deintra_cnl_diff", [](W& b) { return deintra_cnl_diff(b.out_words[0], b.gw, b.gh, 1, 0); }},
    {"lsc_compress", [](W& b) { return lsc_compress(b.otp(b.tables, b.out_stream)); }, taken, stream_memory,
     upper_bound},
    {"lsc_decompress", [](W& b) { return lsc_decompress(b.otp(b.out_tables, b.stream)); }, taken,
     stream_memory, upper_bound},
    {"zerklsc_check_stream",
     [](W& b) -> int32_t { return zerklsc_check_stream(b.otp(b.tables, b.out_stream)); }},
    {"zerklsc_stream_size", [](W& b) { return static_cast<int32_t>(zerklsc_stream_size(b.tw, b.th, 1)); }},
    {"store_data",
     [](W& b) {
         return store_data(b.out_stream, b.words[0], b.words[1], b.words[2], b.words[3], b.gw, b.gh, 0);
     }},
    {"load_data",
     [](W& b) {
         int16_t* const* const p = b.out_words;
         return load_data(b.stream, p[0], p[1], p[2], p[3], b.gw, b.gh, 0);
     }},
    {"zerklsc_status_text zerklsc_version",
     [](W&) { return zerklsc_status_text(ZERKLSC_BAD_STEP)[0] + 256 * (zerklsc_version() > 0); }},
};

// The numbers in records that hold pointers too, for the digest.
void put_numbers(Arena& to, const lsc2d_info& info) {
    to.put(std::vector<int32_t>{info.width, info.height, info.grid, info.shading_percent, info.filter_radius,
                                info.algorithm});
    to.put(info.weight);
}

void put_numbers(Arena& to, const isp_param_tag& isp) {
    to.put(std::vector<uint8_t>{isp.blc[0], isp.blc[1], isp.blc[2], isp.blc[3], isp.bayer_pattern,
                                isp.isp_type});
    to.put(std::vector<int32_t>{isp.grid, isp.shading_percent, isp.filter_radius, isp.isp_algorithm,
                                isp.width, isp.height});
    to.put(isp.weight);
    to.put(isp.corner_ratio);
}

// As many numbers between two.
template <class T>
std::vector<T> noise(Random& random, int64_t count, double low, double high) {
    std::vector<T> values(static_cast<size_t>(count));
    for (T& v : values)
        v = static_cast<T>(low + (high - low) * random.unit());
    return values;
}

} // namespace

Workbench::Workbench(uint64_t seed, const Geometry& g)
    : width(g.width), height(g.height), s(g.step), r(g.radius), shares_rows(g.shares_rows),
      read(size_t{16} * (width * height + (1 << 16))), written(size_t{16} * (width * height + (1 << 16))) {
    Random random(seed);
    lsc2d_grid_samples(w, h, s, s, &gw, &gh);
    lsc2d_table_size(w, h, s, s, &tw, &th);
    order = 8 * gw + 1;
    raw = read.put(noise<uint16_t>(random, width * height, 300, g.brightest));
    frame = written.put(noise<uint16_t>(random, width * height, 300, 1000));
    for (size_t k = 0; k < 4; ++k) {
        planes[k] = read.put(noise<uint16_t>(random, w * h, 300, 1000));
        out_planes[k] = written.put(noise<uint16_t>(random, w * h, 300, 1000));
        tables[k] = read.put(noise<uint16_t>(random, e(), 1024, 4000));
        out_tables[k] = written.put(noise<uint16_t>(random, e(), 1024, 40000));
        words[k] = read.put(noise<int16_t>(random, n(), -100, 100));
        out_words[k] = written.put(noise<int16_t>(random, n(), -8, 8));
    }
    floats = read.put(noise<float>(random, e(), 1, 2));
    out_floats = written.put(noise<float>(random, e(), 1, 2));
    matrix = written.put(noise<float>(random, order * order, -0.5, 0.5));
    wide_matrix = written.put(noise<double>(random, order * order, -0.5, 0.5));
    stream = read.put(noise<uint8_t>(random, 3 * n(), 0, 256));
    out_stream = written.put(noise<uint8_t>(random, 3 * n(), 0, 256));
    mask = written.put(std::vector<int32_t>(static_cast<size_t>((2 * r + 1) * (2 * r + 1))));
    mask_sum = written.put(0);
    box = read.put(imfilter_t{ZERKLSC_FILTER_BOX, r, ZERKLSC_BOUNDARY_MIRROR, nullptr});
    float* const sigma = read.put(static_cast<float>(r) / 2);
    disc = read.put(imfilter_t{ZERKLSC_FILTER_GAUSSIAN, r, ZERKLSC_BOUNDARY_MIRROR, sigma});
    std::vector<pix_point> list(12);
    for (pix_point& p : list)
        p = {static_cast<int16_t>(random.between(0, w - 1)), static_cast<int16_t>(random.between(0, h - 1)),
             7};
    points = written.put(list);
    lsc2d_calib_param defaults;
    lsc2d_calib_param_default(&defaults, s, r, 90);
    param = read.put(defaults);
    model = read.put(shading_t{ZERKLSC_SHADING_EXPONENTIAL, 85, 0});
    calib = read.put(
        std::vector<uint32_t>{static_cast<uint32_t>(s), 0, static_cast<uint32_t>(r), 0, 0, 0, 0, 90});
    report = written.put(zerklsc_report{});
    out_info = written.put(*info(4, out_tables));
    out_isp = written.put(*isp(out_tables));
    read.seal();
}

lsc2d_info* Workbench::info(int algorithm, uint16_t** list) {
    lsc2d_info made{};
    made.width = width;
    made.height = height;
    std::copy_n(list, 4, made.lsc_table);
    generate_bicubic_weight_table(&made.weight, static_cast<uint16_t>(s));
    made.grid = static_cast<uint16_t>(s);
    made.shading_percent = 90;
    made.filter_radius = r;
    made.algorithm = algorithm;
    return read.put(made);
}

isp_param_tag* Workbench::isp(uint16_t** list) {
    isp_param_tag made{};
    lsc2d_info_to_isp_param(info(2, list), &made);
    made.bayer_pattern = 1;
    return read.put(made);
}

lsc_otp_info* Workbench::otp(uint16_t** list, uint8_t* bytes) {
    return read.put(lsc_otp_info{1, tw, th, {list[0], list[1], list[2], list[3]}, bytes, 0});
}

std::span<const EntryPoint> entry_points() {
    return all;
}

uint64_t digest_of(const EntryPoint& entry, uint64_t seed) {
    Workbench bench(seed);
    bench.written.put(entry.call(bench));
    put_numbers(bench.written, *bench.out_info);
    put_numbers(bench.written, *bench.out_isp);
    return bench.written.digest();
}

} // namespace zerklsc::testing
