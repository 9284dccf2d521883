// What the manual says of every function: what a comment calls read is not written, arrays need the alignment
// of their elements and no more, nothing is printed, and heap beyond a few hundred bytes is named.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>

#include "support/allocations.h"
#include "support/random.h"
#include "zerklsc_driver.h"

namespace zerklsc::testing {
namespace {

// Memory that can be sealed. What is put into it stands where its elements may, and nothing larger.
class Arena {
  public:
    Arena()
        : base_(static_cast<uint8_t*>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() { munmap(base_, size); }

    template <class T>
    T* put(const std::vector<T>& values) {
        mprotect(base_, size, PROT_READ | PROT_WRITE);
        used_ = (used_ / (2 * alignof(T)) + 1) * 2 * alignof(T) + alignof(T);
        uint8_t* const at = base_ + used_;
        std::memcpy(at, values.data(), values.size() * sizeof(T));
        used_ += values.size() * sizeof(T);
        EXPECT_LE(used_, size);
        return reinterpret_cast<T*>(at);
    }

    template <class T>
    T* put(const T& value) {
        return put(std::vector<T>{value});
    }

    void seal() { mprotect(base_, size, PROT_READ); }

  private:
    static constexpr size_t size = 1 << 20;
    uint8_t* base_;
    size_t used_ = 0;
};

constexpr int32_t width = 132, height = 104, step = 8;
constexpr int32_t w = width / 2, h = height / 2, gw = 10, gh = 8, tw = gw + 2, th = gh + 2;
constexpr size_t frame_size = width * height, plane_size = w * h, table_size = tw * th;

struct Bench {
    Arena read, written;
    Random random{11};
    uint16_t *raw = read.put(noise(frame_size, 300, 1000)),
             *frame = written.put(noise(frame_size, 300, 1000));
    uint16_t *planes[4], *out_planes[4], *tables[4], *out_tables[4];
    int16_t* words[4];
    float* floats = read.put(std::vector<float>(2 * plane_size, 1.5f));
    float* out_floats = written.put(std::vector<float>(2 * plane_size, 1.5f));
    uint8_t* stream = read.put(std::vector<uint8_t>(3 * gw * gh, 17));
    uint8_t* out_stream = written.put(std::vector<uint8_t>(4 * table_size, 17));
    imfilter_t* box = read.put(imfilter_t{ZERKLSC_FILTER_BOX, 3, ZERKLSC_BOUNDARY_MIRROR, nullptr});
    imfilter_t* disc = read.put(imfilter_t{ZERKLSC_FILTER_GAUSSIAN, 3, 0, read.put(1.5f)});
    lsc2d_calib_param* param;
    shading_t* model = read.put(shading_t{ZERKLSC_SHADING_LINEAR, 80, 0});
    uint32_t* calib = read.put(std::vector<uint32_t>{step, 0, 3, 0, 0, 0, 0, 90});
    pix_point* points = written.put(std::vector<pix_point>(12, {20, 30, 0}));
    lsc2d_info info{};
    isp_param_tag isp{};

    Bench() {
        for (int k = 0; k < 4; ++k) {
            planes[k] = read.put(noise(plane_size, 300, 1000));
            tables[k] = read.put(noise(table_size, 1024, 4000));
            words[k] = read.put(std::vector<int16_t>(gw * gh, static_cast<int16_t>(k)));
            out_planes[k] = written.put(noise(plane_size, 0, 9));
            out_tables[k] = written.put(noise(table_size, 0, 9));
            info.lsc_table[k] = tables[k];
        }
        info.width = width, info.height = height, info.grid = step;
        info.shading_percent = 90, info.filter_radius = 3;
        generate_bicubic_weight_table(&info.weight, step);
        lsc2d_info_to_isp_param(&info, &isp);
        isp.isp_type = ZERKLSC_ISP_TVESSA2;
        lsc2d_calib_param defaults;
        lsc2d_calib_param_default(&defaults, step, 3, 90);
        param = read.put(defaults);
    }

    std::vector<uint16_t> noise(size_t count, int64_t low, int64_t high) {
        std::vector<uint16_t> values(count);
        for (uint16_t& v : values)
            v = static_cast<uint16_t>(random.between(low, high));
        return values;
    }

    // Records that are only read, or whose comment says which field is written, with tables to read or to
    // write.
    lsc2d_info* record(int algorithm, Arena& arena, uint16_t** list) {
        info.algorithm = algorithm;
        std::copy_n(list, 4, info.lsc_table);
        return arena.put(info);
    }
    isp_param_tag* isp_record(Arena& arena, uint16_t** list) {
        std::copy_n(list, 4, isp.lsc_table);
        return arena.put(isp);
    }
    lsc_otp_info* otp_record(uint16_t** list, uint8_t* bytes) {
        return read.put(lsc_otp_info{1, tw, th, {list[0], list[1], list[2], list[3]}, bytes, 0});
    }
};

// Heap that is taken: a few hundred bytes, what the function's comment names, or more that stays by intent.
enum Heap { little, named, left };

// What is written lies in b.written, all else in b.read, which is sealed.
struct Call {
    const char* functions;
    void (*call)(Bench& b);
    Heap heap = little;
};

const Call calls[] = {
    {"lsc2d_info_to_isp_param, isp_param_to_lsc2d_info",
     [](Bench& b) {
         const lsc2d_info* const info = b.record(2, b.read, b.tables);
         const isp_param_tag* const isp = b.isp_record(b.read, b.tables);
         b.read.seal();
         lsc2d_info_to_isp_param(info, &b.isp);
         isp_param_to_lsc2d_info(&b.info, isp);
     }},
    {"bayer_split_channel", [](Bench& b) { bayer_split_channel(b.raw, b.out_planes, width, height); }},
    {"bayer_merge_channel", [](Bench& b) { bayer_merge_channel(b.frame, b.planes, width, height); }},
    {"isp_blc_process",
     [](Bench& b) {
         const isp_blc_param* const levels = b.read.put(isp_blc_param{width, height, {3, 5, 7, 9}});
         b.read.seal();
         isp_blc_process(b.frame, levels);
     }},
    {"bayer_rotation", [](Bench& b) { bayer_rotation(b.frame, width, height); }, left},
    {"get_filter_mask",
     [](Bench& b) {
         int32_t* const mask = b.written.put(std::vector<int32_t>(50));
         get_filter_mask(mask + 25, mask, b.disc);
     }},
    {"img_sample_grid",
     [](Bench& b) {
         for (const imfilter_t* filter : {b.box, b.disc})
             img_sample_grid(b.planes[0], b.out_floats, w, h, step, step, gw, gh, filter);
     },
     named},
    {"img_sample", [](Bench& b) { img_sample(b.planes[0], b.points, 12, w, h, b.box); }, named},
    {"get_pixel_maximum",
     [](Bench& b) {
         const pix_point* const points = b.read.put(std::vector<pix_point>(5, {1, 2, 3}));
         b.read.seal();
         get_pixel_maximum(points, 5);
     }},
    {"img_filter", [](Bench& b) { img_filter(b.planes[0] + 200, b.out_planes[0], 30, 20, b.disc); }, named},
    {"calc_otp_table", [](Bench& b) { calc_otp_table(b.planes[0], b.out_floats, w, h, step, 9, gw, 6, 2); },
     left},
    {"calc_correction_table",
     [](Bench& b) { calc_correction_table(b.planes[0], b.out_floats, w, h, step, 9, gw, 6, b.box); }, left},
    {"find_peak_intensity", [](Bench& b) { find_peak_intensity(b.planes[0], b.points, 12, w, h, b.box); },
     named},
    {"lsc2d_calibration_wrapper, zerklsc_calibrate, zerklsc_check_calibration",
     [](Bench& b) {
         for (int algorithm = 0; algorithm < 5; ++algorithm) {
             lsc2d_info* const info = b.record(algorithm, algorithm == 4 ? b.written : b.read, b.out_tables);
             b.read.seal();
             lsc2d_calibration_wrapper(b.raw, info);
             zerklsc_check_calibration(info);
             zerklsc_calibrate(b.raw, info, nullptr);
         }
     },
     left},
    {"lsc2d_calibration_orvel",
     [](Bench& b) { lsc2d_calibration_orvel(b.raw, width, height, b.out_tables, tw, th, b.param); }, left},
    {"lsc2d_calibration_beta",
     [](Bench& b) { lsc2d_calibration_beta(b.raw, width, height, b.out_tables, tw, th, b.param); }, named},
    {"meshgrid",
     [](Bench& b) { // the two lists may overlap
         uint16_t* const list = b.read.put(std::vector<uint16_t>{1, 5, 9, 70});
         b.read.seal();
         meshgrid(b.points, list, list + 1, 4, 3);
         EXPECT_EQ(b.points[11].x * 100 + b.points[11].y, 7070);
     }},
    {"matrix_inv",
     [](Bench& b) {
         std::vector<double> a(100);
         std::generate(a.begin(), a.end(), [&] { return b.random.unit() - 0.5; });
         matrix_inv(b.written.put(a), 10);
         matrix_inv(b.written.put(std::vector<float>(a.begin(), a.end())), 10);
     },
     named},
    {"lsc_table_ftoi", [](Bench& b) { lsc_table_ftoi(b.floats, b.out_tables[0], tw, th); }},
    {"lsc_table_itof", [](Bench& b) { lsc_table_itof(b.tables[0], b.out_floats, tw, th); }},
    {"format_lsc_table", [](Bench& b) { format_lsc_table(b.out_tables[0], tw, th); }},
    {"update_table_border",
     [](Bench& b) { update_table_border(b.floats, b.out_floats, w, h, step, step, gw, gh, 3, 1); }},
    {"lsc2d_table_preproc",
     [](Bench& b) { lsc2d_table_preproc(b.tables, b.out_tables, w, h, tw, th, b.param); }, named},
    {"lsc2d_table_postproc", [](Bench& b) { lsc2d_table_postproc(b.out_tables, w, h, tw, th, b.param); }},
    {"apply_shading_table",
     [](Bench& b) { apply_shading_table(b.out_tables[0], w, h, step, step, tw, th, b.model); }},
    {"calc_shading_table",
     [](Bench& b) { calc_shading_table(b.out_floats, w, h, step, step, tw, th, b.model); }},
    {"lsc2d_grid_convert",
     [](Bench& b) {
         const lsc2d_grid* const from = b.read.put(lsc2d_grid{b.tables[0], step, step, gw, gh});
         const lsc2d_grid* const to = b.read.put(lsc2d_grid{b.out_tables[0], 9, 10, 8, 7});
         b.read.seal();
         lsc2d_grid_convert(from, to, w, h);
     },
     named},
    {"lsc2d_table_mapping",
     [](Bench& b) {
         const auto* const from = b.read.put(lsc2d_table_desc{w, h, step, step, tw, th, b.tables[0]});
         const auto* const to = b.read.put(lsc2d_table_desc{w / 2, h / 2, 5, 4, 7, 8, b.out_tables[0]});
         const auto* const crop = b.read.put(lsc2d_crop{2, 4, w - 6, h - 8});
         b.read.seal();
         lsc2d_table_mapping(from, to, crop);
     },
     named},
    {"lsc2d_bicubic_correction",
     [](Bench& b) {
         lsc2d_bicubic_correction(b.planes[0], b.out_planes[0], w, h, b.tables[0], step, step, tw);
     }},
    {"expand_lsc_table_c1, expand_lsc_table_c2",
     [](Bench& b) {
         expand_lsc_table_c1(b.out_floats, gw, gh);
         expand_lsc_table_c2(b.out_floats, gw, gh);
         expand_lsc_table_c2(b.out_tables[0], gw, gh);
     }},
    {"align_table_linear, align_table_cubic_c1, align_table_cubic_c2",
     [](Bench& b) {
         align_table_linear(b.out_floats, gw, gh, tw, w, h, step, step);
         align_table_cubic_c1(b.out_floats, gw, gh, tw, w, h, step, step);
         align_table_cubic_c2(b.out_floats, gw, gh, tw, w, h, step, step);
     }},
    {"generate_bicubic_weight_table, cubic_1D",
     [](Bench& b) {
         generate_bicubic_weight_table(b.written.put(b.info.weight), step);
         lnc_bicubic_weight_t_64_tag* const weights = b.read.put(b.info.weight);
         b.read.seal();
         cubic_1D(1100, 1200, 1400, 1300, 3, step, weights);
     }},
    {"bicubic_lnc_correction_vessaL2",
     [](Bench& b) { bicubic_lnc_correction_vessaL2(b.raw, b.frame, b.isp_record(b.written, b.tables)); }},
    {"bicubic_lnc_correction_vessaL2_core, bicubic_lnc_correction_tvessa2",
     [](Bench& b) {
         isp_param_tag* const param = b.isp_record(b.read, b.tables);
         b.read.seal();
         bicubic_lnc_correction_vessaL2_core(b.raw, b.frame, param);
         bicubic_lnc_correction_tvessa2(b.raw, b.frame, param);
     }},
    {"lsc2d_correction_wrapper, zerklsc_correct, zerklsc_check_correction",
     [](Bench& b) {
         lsc2d_info* const records[] = {b.record(2, b.read, b.tables), b.record(4, b.read, b.tables)};
         b.read.seal();
         for (lsc2d_info* info : records) {
             lsc2d_correction_wrapper(b.raw, b.frame, info);
             zerklsc_check_correction(info);
             zerklsc_correct(info, b.raw, 2 * width, b.frame, 2 * width, 11, 50);
         }
     }},
    {"bicubic_lnc_param_gen_orvel_otp, zerklsc_generate_orvel_otp",
     [](Bench& b) {
         isp_param_tag* const param = b.isp_record(b.read, b.out_tables);
         b.read.seal();
         bicubic_lnc_param_gen_orvel_otp(b.raw, param);
         zerklsc_generate_orvel_otp(b.raw, param, nullptr);
     },
     named},
    {"bicubic_lnc_param_gen_halvane, zerklsc_generate_halvane",
     [](Bench& b) {
         bicubic_lnc_param_gen_halvane(b.raw, b.isp_record(b.written, b.out_tables));
         zerklsc_generate_halvane(b.raw, b.isp_record(b.written, b.out_tables), nullptr);
     },
     named},
    {"lsc2d_calibration_orvel_otp, lsc2d_calibration_halvane",
     [](Bench& b) {
         lsc2d_calibration_orvel_otp(b.raw, width, height, b.out_tables, 0, 0, 2, b.calib);
         lsc2d_calibration_halvane(b.raw, width, height, b.out_tables, 0, 0, 2, b.calib);
     },
     named},
    {"lsc2d_otp_table",
     [](Bench& b) {
         uint8_t* out[4];
         std::transform(b.out_tables, b.out_tables + 4, out,
                        [](uint16_t* t) { return reinterpret_cast<uint8_t*>(t); });
         lsc2d_otp_table(b.raw, width, height, out, gw, gh, b.calib);
     },
     named},
    {"intra_cnl_diff, deintra_cnl_diff",
     [](Bench& b) {
         int16_t* const plane = b.written.put(std::vector<int16_t>(gw * gh, 5));
         intra_cnl_diff(plane, gw, gh, 1, 0);
         deintra_cnl_diff(plane, gw, gh, 1, 0);
     }},
    {"lsc_compress, zerklsc_check_stream",
     [](Bench& b) {
         lsc_otp_info* const info = b.otp_record(b.tables, b.out_stream);
         b.read.seal();
         lsc_compress(info);
         zerklsc_check_stream(info);
     },
     named},
    {"lsc_decompress",
     [](Bench& b) {
         lsc_otp_info* const info = b.otp_record(b.out_tables, b.stream);
         b.read.seal();
         lsc_decompress(info);
     },
     named},
    {"store_data, load_data",
     [](Bench& b) {
         int16_t* const out = b.written.put(std::vector<int16_t>(4 * gw * gh));
         constexpr int n = gw * gh;
         store_data(b.out_stream, b.words[0], b.words[1], b.words[2], b.words[3], gw, gh, 0);
         load_data(b.stream, out, out + n, out + 2 * n, out + 3 * n, gw, gh, 0);
     }},
};

TEST(HeaderCalls, KeepTheirInputsPrintNothingAndNameTheirHeap) {
    for (const Call& c : calls) {
        SCOPED_TRACE(c.functions);
        Bench bench;
        bench.read.seal();
        ::testing::internal::CaptureStdout();
        const AllocationScope heap;
        c.call(bench);
        std::fflush(stdout);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
        EXPECT_TRUE(c.heap != little || heap.peak_bytes() < 500) << heap.peak_bytes();
        EXPECT_EQ(heap.leftovers().empty(), c.heap != left);
    }
}

} // namespace
} // namespace zerklsc::testing
