#include <cstring>
#include <numeric>
#include <string>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc_driver.h"

namespace {

using namespace zerklsc::testing;

// A frame without padding with its tables, and what the correction of the whole gives.
struct Whole {
    Whole(int algorithm, uint16_t width, uint16_t height, uint16_t step, Random& random)
        : in(random_samples(random, size_t{width} * height)) {
        int32_t table_w, table_h;
        lsc2d_table_size(width / 2, height / 2, step, step, &table_w, &table_h);
        for (size_t c = 0; c < 4; ++c) {
            for (uint16_t gain : random_samples(random, static_cast<size_t>(table_w * table_h)))
                tables[c].push_back(static_cast<uint16_t>(gain >> 2));
            info.lsc_table[c] = tables[c].data();
        }
        info.width = width;
        info.height = height;
        info.grid = step;
        info.algorithm = algorithm;
        corrected.resize(in.size());
        // The whole-frame function would read beyond the tables of some geometries that are refused.
        if (ZERKLSC_REFUSED(zerklsc_check_correction(&info)))
            return;
        ::testing::internal::CaptureStdout(); // the warning of narrow slices
        lsc2d_correction_wrapper(in.data(), corrected.data(), &info);
        ::testing::internal::GetCapturedStdout();
    }

    lsc2d_info info{};
    std::vector<uint16_t> in, corrected, tables[4];
};

constexpr uint16_t padding = 0xABCD;

// The rows of a frame with padding behind each but the last.
struct Padded {
    Padded(const std::vector<uint16_t>& samples, const lsc2d_info& info, size_t pad, Against side)
        : width(info.width), height(info.height), stride(width + pad), memory(height * stride - pad, side) {
        std::fill(memory.begin(), memory.end(), padding);
        for (size_t i = 0; i < samples.size(); ++i)
            memory[i / width * stride + i % width] = samples[i];
    }

    size_t bytes() const { return stride * sizeof(uint16_t); }

    std::vector<uint16_t> samples() {
        std::vector<uint16_t> out;
        for (size_t i = 0; i < width * height; ++i)
            out.push_back(memory[i / width * stride + i % width]);
        return out;
    }

    bool padding_is_intact() {
        for (size_t i = 0; i < memory.size(); ++i)
            if (i % stride >= width && memory[i] != padding)
                return false;
        return memory.intact();
    }

    size_t width, height, stride;
    Guarded<uint16_t> memory;
};

// Every row once, in bands of random heights and in any order.
void correct_in_bands(const lsc2d_info& info, Padded& in, Padded& out, Random& random) {
    std::vector<int32_t> cuts = {0, info.height};
    for (int64_t n = random.between(0, 4); n > 0; --n)
        cuts.push_back(static_cast<int32_t>(random.between(0, info.height)));
    std::sort(cuts.begin(), cuts.end());
    std::vector<size_t> bands(cuts.size() - 1);
    std::iota(bands.begin(), bands.end(), size_t{0});
    for (size_t i = bands.size(); i > 1; --i)
        std::swap(bands[i - 1], bands[static_cast<size_t>(random.between(0, static_cast<int64_t>(i) - 1))]);
    for (size_t b : bands)
        ASSERT_EQ(zerklsc_correct(&info, in.memory.data(), in.bytes(), out.memory.data(), out.bytes(),
                                  cuts[b], cuts[b + 1] - cuts[b]),
                  ZERKLSC_OK);
}

TEST(Bands, AnySplitOfPaddedRowsGivesTheBytesOfTheWholeAndNoOther) {
    Random random(31);
    int tried = 0;
    for (int round = 0; round < 1500; ++round) {
        Whole whole(static_cast<int>(random.between(0, 4)), static_cast<uint16_t>(random.between(1, 150)),
                    static_cast<uint16_t>(random.between(1, 40)),
                    static_cast<uint16_t>(random.between(1, 24)), random);
        if (ZERKLSC_REFUSED(zerklsc_check_correction(&whole.info)))
            continue;
        ++tried;
        const Against side = round % 2 == 0 ? Against::front : Against::back;
        Padded in(whole.in, whole.info, static_cast<size_t>(random.between(0, 70)), side);
        Padded other(std::vector<uint16_t>(whole.in.size(), 7), whole.info,
                     static_cast<size_t>(random.between(0, 70)), side);
        Padded& out = round % 3 == 0 ? in : other;
        ::testing::internal::CaptureStdout();
        ASSERT_NO_FATAL_FAILURE(correct_in_bands(whole.info, in, out, random));
        ASSERT_EQ(::testing::internal::GetCapturedStdout(), "");
        ASSERT_EQ(out.samples(), whole.corrected)
            << whole.info.width << " x " << whole.info.height << ", step " << whole.info.grid
            << ", algorithm " << whole.info.algorithm << ", strides " << in.stride << " and " << out.stride;
        ASSERT_TRUE(in.padding_is_intact() && out.padding_is_intact());
        ASSERT_TRUE(&out == &in || in.samples() == whole.in);
    }
    EXPECT_GE(tried, 1000);
}

// Where a correction reads and writes in the frame of BandsCall: strides in bytes, offsets in samples.
struct Placing {
    size_t stride = 160, out_stride = 160, out_offset = 0, offset = 0;
};

struct BandsCall : ::testing::Test {
    zerklsc_status run(int32_t first_row, int32_t rows, const Placing& at = {}) {
        return zerklsc_correct(&whole.info, frame.data() + at.offset, at.stride, frame.data() + at.out_offset,
                               at.out_stride, first_row, rows);
    }

    Random random{5};
    Whole whole{2, 64, 20, 8, random};
    std::vector<uint16_t> frame = std::vector<uint16_t>(6000, 0x1111);
};

TEST_F(BandsCall, RowsThatAreNotAskedForStay) {
    ASSERT_EQ(run(7, 3), ZERKLSC_OK);
    for (size_t i = 0; i < frame.size(); ++i)
        if (i / 80 < 7 || i / 80 >= 10 || i % 80 >= 64) {
            ASSERT_EQ(frame[i], 0x1111) << i;
        }
    EXPECT_EQ(frame[7 * 80], 1023); // 0x1111 is above white
    const auto once = frame;
    EXPECT_EQ(run(20, 0), ZERKLSC_OK);
    EXPECT_EQ(frame, once);
}

TEST_F(BandsCall, HostileRowsStridesAndOverlapsAreRefusedAndNothingIsWritten) {
    const auto before = frame;
    const struct {
        Placing at;
        int32_t first_row, rows;
        zerklsc_status status;
    } cases[] = {
        {{160, 160, 0}, -1, 1, ZERKLSC_BAD_ROWS},
        {{160, 160, 0}, 0, -1, ZERKLSC_BAD_ROWS},
        {{160, 160, 0}, 1, 20, ZERKLSC_BAD_ROWS},
        {{160, 160, 0}, 21, 0, ZERKLSC_BAD_ROWS},
        {{160, 160, 0}, INT32_MAX, INT32_MAX, ZERKLSC_BAD_ROWS},
        {{160, 160, 0}, INT32_MIN, INT32_MIN, ZERKLSC_BAD_ROWS},
        {{126, 160, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{160, 126, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{161, 161, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{0, 0, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{SIZE_MAX - 1, 160, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{160, SIZE_MAX / 2 - 1, 3000}, 0, 20, ZERKLSC_BAD_STRIDE},
        {{160, 160, 1}, 0, 20, ZERKLSC_OVERLAP}, // a sample further
        {{160, 160, 1}, 3, 1, ZERKLSC_OVERLAP},
        {{160, 160, 80}, 0, 20, ZERKLSC_OVERLAP}, // a row further
        {{160, 160, 79}, 0, 20, ZERKLSC_OVERLAP},
        {{160, 176, 0}, 0, 20, ZERKLSC_OVERLAP},            // in place with another stride
        {{160, 128, 19 * 80 + 63}, 0, 20, ZERKLSC_OVERLAP}, // the last sample
        {{256, 256, 64}, 0, 20, ZERKLSC_OK},                // beside each other
        {{300, 300, 80}, 0, 20, ZERKLSC_OK},
        {{160, 128, 19 * 80 + 64}, 0, 20, ZERKLSC_OK}, // behind each other
        {{160, 160, 20 * 80}, 0, 20, ZERKLSC_OK},
        {{160, 128, 0, 19 * 64 + 63}, 0, 20, ZERKLSC_OVERLAP},
        {{160, 128, 0, 19 * 64 + 64}, 0, 20, ZERKLSC_OK},
    };
    for (const auto& c : cases) {
        frame = before;
        EXPECT_EQ(run(c.first_row, c.rows, c.at), c.status) << &c - cases;
        EXPECT_EQ(frame == before, c.status != ZERKLSC_OK) << &c - cases;
    }
}

TEST_F(BandsCall, MissingPointersAreRefused) {
    const auto before = frame;
    uint16_t* const f = frame.data();
    EXPECT_EQ(zerklsc_correct(nullptr, f, 160, f, 160, 0, 20), ZERKLSC_NULL_POINTER);
    EXPECT_EQ(zerklsc_correct(&whole.info, nullptr, 160, f, 160, 0, 20), ZERKLSC_NULL_POINTER);
    EXPECT_EQ(zerklsc_correct(&whole.info, f, 160, nullptr, 160, 0, 20), ZERKLSC_NULL_POINTER);
    for (auto& table : whole.info.lsc_table) {
        uint16_t* const kept = table;
        table = nullptr;
        EXPECT_EQ(run(0, 20), ZERKLSC_NULL_POINTER);
        table = kept;
    }
    EXPECT_EQ(zerklsc_check_correction(nullptr), ZERKLSC_NULL_POINTER);
    EXPECT_EQ(frame, before);
}

constexpr struct {
    int algorithm;
    uint16_t width, height, grid;
    zerklsc_status status;
} geometries[] = {
    {2, 4000, 3000, 64, ZERKLSC_OK},
    {0, 4000, 3000, 16, ZERKLSC_OK},
    {-1, 4000, 3000, 64, ZERKLSC_UNKNOWN_ALGORITHM},
    {5, 0, 0, 0, ZERKLSC_UNKNOWN_ALGORITHM},
    {1, 0, 3000, 64, ZERKLSC_EMPTY_FRAME},
    {4, 4000, 0, 0, ZERKLSC_EMPTY_FRAME},
    {2, 4000, 3000, 0, ZERKLSC_BAD_STEP},
    {4, 4000, 3000, 256, ZERKLSC_BAD_STEP},
    {3, 4208, 3120, 260, ZERKLSC_BAD_STEP},
    {2, 4098, 3000, 64, ZERKLSC_OTHER_TABLE_SIZE}, // 2049 is 32 * 64 + 1
    {2, 4099, 3000, 64, ZERKLSC_OTHER_TABLE_SIZE},
    {2, 4000, 2050, 64, ZERKLSC_OTHER_TABLE_SIZE},
    {2, 4000, 3000, 1,
     ZERKLSC_OTHER_TABLE_SIZE}, // a step of 1: the last sample is a node, and no node follows
    {2, 1, 3000, 64, ZERKLSC_OTHER_TABLE_SIZE},
    {4, 4098, 2050, 64, ZERKLSC_OK},
    {4, 4000, 3000, 255, ZERKLSC_OK},
    {4, 1, 1, 1, ZERKLSC_OK},
    {2, 4000, 3000, 24, ZERKLSC_STEP_NOT_SMOOTH},
    {3, 4000, 3000, 65, ZERKLSC_STEP_NOT_SMOOTH},
    {3, 100, 3000, 128, ZERKLSC_STEP_NOT_SMOOTH},
    {3, 126, 3000, 32, ZERKLSC_NARROW_FRAME},
    {3, 128, 3000, 32, ZERKLSC_OK},
    {4, 126, 3000, 32, ZERKLSC_OK},
};

TEST(CorrectionFits, EachGeometryHasTheReasonThatTheManualNames) {
    for (const auto& c : geometries) {
        lsc2d_info info{};
        info.width = c.width;
        info.height = c.height;
        info.grid = c.grid;
        info.algorithm = c.algorithm;
        EXPECT_EQ(zerklsc_check_correction(&info), c.status) << &c - geometries;
        uint16_t sample = 9;
        std::fill(info.lsc_table, info.lsc_table + 4, &sample);
        if (ZERKLSC_REFUSED(c.status)) {
            EXPECT_EQ(zerklsc_correct(&info, &sample, 65534, &sample, 65534, 0, 1), c.status)
                << &c - geometries;
            EXPECT_EQ(sample, 9);
        }
    }
}

} // namespace
