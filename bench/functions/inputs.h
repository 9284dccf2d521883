// A frame of 2000 x 1500 pixels, tables of 35 x 27 nodes, and the records and buffers of all exported
// functions.
#pragma once

#include <unistd.h>

#include <array>

#include "frames.h"
#include "zerklsc_driver.h"

namespace zerklsc::bench {

constexpr int32_t width = 2000, height = 1500, plane_w = width / 2, plane_h = height / 2;
constexpr int32_t step = 32, fit_step = 64, radius = 8, side = 512, inverted = 96, calls = 1000;
constexpr int32_t grid_w = 33, grid_h = 25, n = grid_w * grid_h, table_w = grid_w + 2, table_h = grid_h + 2;
constexpr int32_t mesh_w = 75, mesh_h = 59, turned_w = 64, turned_h = 48;
constexpr double pixels = double{width} * height, samples = pixels / 4, nodes = double{table_w} * table_h;
constexpr int32_t linear = ZERKLSC_EDGE_LINEAR, quadratic = ZERKLSC_FILL_QUADRATIC;

// A file of gains as text.
struct GainFile {
    char path[24] = "/tmp/zerklsc_XXXXXX";

    GainFile() {
        const int file = mkstemp(path);
        for (int i = 0; i < table_w * table_h; ++i)
            dprintf(file, "%d ", 1024 + 13 * i);
        close(file);
    }
    GainFile(const GainFile&) = delete;
    GainFile& operator=(const GainFile&) = delete;
    ~GainFile() { unlink(path); }
};

// Buffers for every call; what one of them changes in place is nobody else's input.
struct Inputs {
    std::vector<uint16_t> frame = flat_field(width, height), out = frame, split = frame;
    uint16_t* planes[ZERKLSC_CHANNELS] = {&split[0], &split[plane_w * plane_h], &split[2 * plane_w * plane_h],
                                          &split[3 * plane_w * plane_h]};
    Tables tables{width, height, step, 2}, vessal2{width, height, step, 4}, work{width, height, step, 2};
    isp_param_tag record{}, vessal2_record{}, work_record{}, copied_record{};
    lsc2d_info copied{};
    lsc2d_calib_param calib{}, fit{};
    std::array<uint32_t, 3> words = {step, radius, 100};
    isp_blc_param black{width, height, {64, 60, 255, 0}};
    float sigma = radius / 2.087f;
    imfilter_t box{ZERKLSC_FILTER_BOX, radius, ZERKLSC_BOUNDARY_MIRROR, nullptr};
    imfilter_t disc{ZERKLSC_FILTER_GAUSSIAN, radius, ZERKLSC_BOUNDARY_MIRROR, &sigma};
    shading_t shading{ZERKLSC_SHADING_SQUARE_ROOT, 80, 0};
    std::vector<pix_point> points, mesh = std::vector<pix_point>(mesh_w * mesh_h);
    std::vector<uint16_t> lines = std::vector<uint16_t>(mesh_w, 7);
    std::vector<float> inner = std::vector<float>(n, 1.5f);
    std::vector<float> bordered = std::vector<float>(table_w * table_h, 1.5f);
    std::vector<int32_t> mask = std::vector<int32_t>((2 * radius + 1) * (2 * radius + 1));
    std::vector<double> matrix, inverse;
    std::vector<float> float_matrix, float_inverse;
    std::vector<int16_t> differences = std::vector<int16_t>(4 * n, 3);
    std::vector<uint8_t> stream = std::vector<uint8_t>(3 * n);
    lsc_otp_info otp{0, table_w, table_h, {}, stream.data(), 0};
    std::vector<uint8_t> listed = std::vector<uint8_t>(8 * n);
    uint8_t* lists[ZERKLSC_CHANNELS];
    lnc_bicubic_weight_t_64_tag weights{};
    GainFile file;

    Inputs() {
        for (Tables* t : {&tables, &vessal2, &work})
            t->info.filter_radius = radius;
        lsc2d_info_to_isp_param(&tables.info, &record);
        lsc2d_info_to_isp_param(&vessal2.info, &vessal2_record);
        lsc2d_info_to_isp_param(&work.info, &work_record);
        generate_bicubic_weight_table(&vessal2_record.weight, step);
        generate_bicubic_weight_table(&weights, step);
        lsc2d_calib_param_default(&calib, step, radius, 100);
        lsc2d_calib_param_default(&fit, fit_step, radius, 100);
        pix_point* cluster = nullptr;
        int32_t count = 0;
        init_center_points(plane_w, plane_h, &cluster, &count);
        points.assign(cluster, cluster + count);
        release_center_points(cluster);
        testing::Random random(1);
        for (int i = 0; i < inverted * inverted; ++i)
            matrix.push_back(random.unit() - 0.5);
        float_matrix.assign(matrix.begin(), matrix.end());
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            otp.lsc_table[c] = work.info.lsc_table[c];
            lists[c] = &listed[static_cast<size_t>(2 * n * c)];
        }
        bayer_split_channel(frame.data(), planes, width, height);
        lsc_compress(&otp);
    }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;
};

} // namespace zerklsc::bench
