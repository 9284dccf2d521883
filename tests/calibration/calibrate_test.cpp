// lsc2d_calibration_wrapper, zerklsc_check_calibration, zerklsc_calibrate
#include "zerklsc_driver.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include <gtest/gtest.h>

#include "calibration/call.h"
#include "support/allocations.h"
#include "support/random.h"

namespace {

using namespace zerklsc::testing;
using Samples = std::vector<uint16_t>;

uint32_t inner_nodes_at(const Call& call, size_t plane, uint16_t gain) {
    const Samples table = call.tables->table[plane].copy();
    uint32_t count = 0;
    for (int32_t j = 1; j < call.table_h - 1; ++j)
        for (int32_t i = 1; i < call.table_w - 1; ++i)
            count += table[static_cast<size_t>(j * call.table_w + i)] == gain;
    return count;
}

Samples noise(const Case& g, int64_t low, int64_t high) {
    Random random(static_cast<uint64_t>(g.width * 1000 + g.height));
    Samples raw(static_cast<size_t>(g.width * g.height) + 1);
    for (uint16_t& v : raw)
        v = static_cast<uint16_t>(random.between(low, high));
    return raw;
}

Case random_case(Random& random) {
    const auto up_to = [&random](int64_t last) { return static_cast<int>(random.between(0, last)); };
    const int large = up_to(2) == 0 ? 60 : 0;
    return {up_to(4), large + up_to(140), large + up_to(130), up_to(up_to(2) == 0 ? 255 : 40),
            static_cast<int32_t>(up_to(up_to(3) == 0 ? 120 : 14)) - (up_to(30) == 0 ? 1 : 0)};
}

// The tvessa2 ISP takes planes of this size to have a node less than the tables.
bool is_past_whole_cells(int size, int step) {
    return size % step == 1 % step;
}

TEST(CheckCalibration, AcceptsExactlyWhatTheCalibrationTakesAndTheIspReads) {
    Random random(17);
    int accepted[5] = {}, other_size = 0;
    for (int round = 0; round < 4000; ++round) {
        const Case g = random_case(random);
        Call plain(g), silent(g);
        if (g.algorithm == ZERKLSC_ALGORITHM_BETA && plain.table_w * plain.table_h > 250)
            continue;
        const Samples raw = noise(g, 300, 1100);
        ::testing::internal::CaptureStdout();
        const bool done = lsc2d_calibration_wrapper(raw.data(), &plain.info) == 0;
        ::testing::internal::GetCapturedStdout();
        ::testing::internal::CaptureStdout();
        const zerklsc_status fit = zerklsc_check_calibration(&silent.info);
        const zerklsc_status status = zerklsc_calibrate(raw.data(), &silent.info, nullptr);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "") << g;

        const bool misread =
            g.algorithm != ZERKLSC_ALGORITHM_ORVEL_WEIGHTS && g.grid > 0
            && (is_past_whole_cells(g.width / 2, g.grid) || is_past_whole_cells(g.height / 2, g.grid));
        EXPECT_EQ(!ZERKLSC_REFUSED(fit), done && !misread) << g << ": " << zerklsc_status_text(fit);
        EXPECT_EQ(status, ZERKLSC_REFUSED(fit) ? fit : ZERKLSC_OK) << g;
        if (status == ZERKLSC_OK)
            EXPECT_TRUE(silent.same_as(plain)) << g;
        else
            EXPECT_TRUE(silent.same_as(Call(g))) << g;
        accepted[g.algorithm] += status == ZERKLSC_OK;
        other_size += status == ZERKLSC_OTHER_TABLE_SIZE && done;
    }
    for (const int count : accepted)
        EXPECT_GT(count, 50);
    EXPECT_GT(other_size, 80);
}

// The wrapper, which says nothing, takes the same and what only the correction refuses. A frame of one level
// needs no correction; nothing is written or left where a frame is refused.
TEST(CheckCalibration, EachRefusalAndAdviceHasItsReason) {
    const struct {
        std::vector<int32_t> algorithms;
        int width, height, grid;
        int32_t radius;
        zerklsc_status expected;
        bool by_the_correction = false;
    } cases[] = {
        {{0, 1, 2, 3, 4}, 250, 220, 16, 3, ZERKLSC_OK},
        {{-1, 5, INT32_MIN, INT32_MAX}, 250, 220, 16, 3, ZERKLSC_UNKNOWN_ALGORITHM},
        {{0, 4}, 0, 220, 16, 3, ZERKLSC_EMPTY_FRAME},
        {{0, 1, 2, 3, 4}, 0, 0, 16, 0, ZERKLSC_EMPTY_FRAME},
        {{0, 1, 2, 3}, 1, 240, 16, 0, ZERKLSC_OTHER_TABLE_SIZE},
        {{0, 1, 2, 3, 4}, 250, 220, 0, 3, ZERKLSC_BAD_STEP},
        {{0, 1, 4}, 1200, 1100, 256, 3, ZERKLSC_BAD_STEP},
        {{2, 3}, 1200, 1100, 256, 3, ZERKLSC_BAD_STEP, true},
        {{0, 1, 2}, 600, 604, 255, 2, ZERKLSC_STEP_NOT_SMOOTH},
        {{4}, 600, 604, 255, 2, ZERKLSC_OK},
        {{3}, 250, 220, 7, 6, ZERKLSC_BAD_STEP}, // an eighth of it is 0
        {{3}, 62, 64, 110, 2, ZERKLSC_BAD_STEP}, // its points leave the planes
        {{0, 1, 2, 3}, 258, 220, 64, 3, ZERKLSC_OTHER_TABLE_SIZE, true},
        {{0, 1, 2, 3}, 250, 258, 64, 3, ZERKLSC_OTHER_TABLE_SIZE, true},
        {{4}, 258, 258, 64, 3, ZERKLSC_OK},
        {{0, 1, 2, 3, 4}, 250, 220, 16, -1, ZERKLSC_BAD_RADIUS},
        {{0, 1, 2, 3, 4}, 250, 220, 16, INT32_MAX, ZERKLSC_BAD_RADIUS},
        {{0, 1, 2, 4}, 240, 242, 16, 120, ZERKLSC_BAD_RADIUS},
        {{0, 1, 2, 4}, 240, 242, 16, 119, ZERKLSC_OK},
        {{0, 1, 2, 4}, 250, 220, 16, 110, ZERKLSC_BAD_RADIUS},
        {{3}, 250, 220, 16, 400, ZERKLSC_BAD_RADIUS},
        {{2, 3, 4}, 30000, 30002, 255, 11585, ZERKLSC_BAD_RADIUS},
        {{0}, 250, 96, 16, 3, ZERKLSC_PLANE_TOO_SMALL},  // no room for its corner blocks
        {{0}, 98, 240, 16, 2, ZERKLSC_OTHER_TABLE_SIZE}, // likewise, but that is seen first
        {{1}, 98, 240, 16, 2, ZERKLSC_OTHER_TABLE_SIZE, true},
        {{0}, 100, 240, 16, 2, ZERKLSC_NARROW_FRAME},
        {{2, 3, 4}, 252, 16, 4, 3, ZERKLSC_PLANE_TOO_SMALL}, // no room for a centre cluster
        {{4}, 18, 240, 4, 2, ZERKLSC_PLANE_TOO_SMALL},
        {{1}, 18, 240, 4, 2, ZERKLSC_OTHER_TABLE_SIZE, true},
        {{2}, 20, 21, 4, 9, ZERKLSC_NARROW_FRAME},
        {{4}, 20, 21, 4, 9, ZERKLSC_OK},
        {{4}, 250, 1, 4, 0, ZERKLSC_PLANE_TOO_SMALL},
        {{0, 1, 2, 4}, 250, 160, 80, 3, ZERKLSC_TOO_FEW_NODES},
        {{1, 2, 4}, 60, 240, 30, 2, ZERKLSC_TOO_FEW_NODES},
        {{1, 2}, 62, 240, 30, 2, ZERKLSC_OTHER_TABLE_SIZE, true},
        {{4}, 62, 240, 30, 2, ZERKLSC_OK},
        {{3}, 24, 26, 8, 8, ZERKLSC_NO_SOLUTION}, // it has a single point
        {{0, 1, 2, 3}, 250, 220, 24, 3, ZERKLSC_STEP_NOT_SMOOTH},
        {{0, 1, 2, 3}, 126, 220, 16, 3, ZERKLSC_NARROW_FRAME},
        {{4}, 126, 220, 24, 3, ZERKLSC_OK},
    };
    const Samples raw(1200 * 1100, 500);
    for (const auto& c : cases)
        for (const int32_t algorithm : c.algorithms) {
            const Case g = {algorithm, c.width, c.height, c.grid, c.radius};
            Call call(g, 100);
            const AllocationScope scope;
            EXPECT_EQ(zerklsc_check_calibration(&call.info), c.expected) << g;
            EXPECT_TRUE(scope.leftovers().empty()) << g;
            const bool taken = c.by_the_correction || !ZERKLSC_REFUSED(c.expected);
            EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), taken ? 0 : -1) << g;
            EXPECT_TRUE(taken ? call.tables->all(1023, 1025) : call.same_as(Call(g))) << g;
            EXPECT_TRUE(taken || scope.leftovers().empty()) << g;
        }
    EXPECT_EQ(zerklsc_check_calibration(nullptr), ZERKLSC_NULL_POINTER);
}

// Advised against exactly where a frame of one level gets another gain than 1 somewhere.
TEST(CheckCalibration, NamesASurfaceFitInWhichRoundingShows) {
    int rounds = 0, tried = 0;
    for (const int grid : {8, 16, 32})
        for (int width = 128; width < 300; width += 2 * grid)
            for (int32_t radius = 0; radius < grid; radius += 5) {
                const Case g = {ZERKLSC_ALGORITHM_BETA, width + 10, width - grid, grid, radius};
                Call call(g);
                call.info.shading_percent = 100;
                const zerklsc_status advice = zerklsc_check_calibration(&call.info);
                const Samples flat(static_cast<size_t>(g.width * g.height), 600);
                if (zerklsc_calibrate(flat.data(), &call.info, nullptr) != ZERKLSC_OK)
                    continue;
                EXPECT_EQ(advice, call.tables->all(ZERKLSC_UNITY_GAIN, ZERKLSC_UNITY_GAIN)
                                      ? ZERKLSC_OK
                                      : ZERKLSC_FIT_ROUNDS)
                    << g;
                rounds += advice == ZERKLSC_FIT_ROUNDS;
                ++tried;
            }
    EXPECT_GT(rounds, 3);
    EXPECT_GT(tried - rounds, 10);
}

TEST(Calibrate, MissingPointersAreNamedAndTheReportIsLeftAlone) {
    const Case g = {2, 250, 220, 16, 3};
    const Samples raw = noise(g, 300, 1000);
    zerklsc_report report{.clipped_samples = {7, 7, 7, 7}, .capped_nodes = {}, .dark_row_ends = 7};
    EXPECT_EQ(zerklsc_calibrate(raw.data(), nullptr, &report), ZERKLSC_NULL_POINTER);
    EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), nullptr), -1);
    for (size_t missing = 0; missing <= 4; ++missing) {
        Call call(g);
        if (missing < 4)
            call.info.lsc_table[missing] = nullptr;
        const uint16_t* const given = missing < 4 ? raw.data() : nullptr;
        EXPECT_EQ(zerklsc_calibrate(given, &call.info, &report), ZERKLSC_NULL_POINTER);
        EXPECT_EQ(lsc2d_calibration_wrapper(given, &call.info), -1);
        EXPECT_TRUE(call.tables->all_untouched()) << missing;
    }
    EXPECT_EQ(report.dark_row_ends, 7u);
}

// Clipped samples in three planes, a black patch of plane 1 around node (2, 3), and a right edge that fades.
Samples faulty(const Case& g, uint32_t clipped[4]) {
    Samples raw(static_cast<size_t>(g.width * g.height));
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x) {
            const int plane = x % 2 + 2 * (y % 2);
            const bool clips = y < 2 * (plane + 1) && x == 40 + plane && plane != 2;
            const bool black =
                plane == 1 && std::abs(x / 2 - 2 * g.grid) < 6 && std::abs(y / 2 - 3 * g.grid) < 6;
            raw[static_cast<size_t>(y * g.width + x)] =
                static_cast<uint16_t>(clips              ? 1024 + plane
                                      : black            ? 0
                                      : x >= g.width - 4 ? 9
                                                         : 600 + plane);
            clipped[plane] += clips;
        }
    return raw;
}

TEST(Calibrate, CountsWhatItClipsAndWhatItCaps) {
    for (int32_t algorithm = 0; algorithm <= 4; ++algorithm) {
        const Case g = {algorithm, 204, 180, 16, 2};
        uint32_t clipped[4] = {};
        const Samples raw = faulty(g, clipped);
        Call call(g, 100);
        zerklsc_report report;
        std::memset(&report, 0x5B, sizeof report);
        ASSERT_FALSE(ZERKLSC_REFUSED(zerklsc_calibrate(raw.data(), &call.info, &report))) << algorithm;
        for (size_t plane = 0; plane < 4; ++plane) {
            EXPECT_EQ(report.clipped_samples[plane], algorithm <= 1 ? clipped[plane] : 0u) << algorithm;
            EXPECT_EQ(report.capped_nodes[plane], inner_nodes_at(call, plane, ZERKLSC_HIGHEST_GAIN))
                << algorithm;
        }
        // The fit smooths the patch.
        if (algorithm != ZERKLSC_ALGORITHM_BETA) {
            EXPECT_GE(report.capped_nodes[1], 1u) << algorithm;
            EXPECT_LT(report.capped_nodes[3], report.capped_nodes[1]) << algorithm;
        }
        EXPECT_EQ(report.dark_row_ends > 0, algorithm == 0) << algorithm;
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0) << algorithm;
        std::fflush(stdout);
        const std::string printed = ::testing::internal::GetCapturedStdout();
        const auto lines = std::count(printed.begin(), printed.end(), '\n');
        const uint32_t clips = std::accumulate(report.clipped_samples, report.clipped_samples + 4, 0u);
        EXPECT_EQ(lines, clips + report.dark_row_ends) << algorithm;
    }
}

// A flat frame but for two nodes: one half as bright as the rest, and one that asks for more than the highest
// gain. The methods that sample follow them, and all follow the shading model, on the border too.
TEST(Wrapper, ShadesAndLimitsEachTableAndOnlyReadsTheFrame) {
    std::vector<uint16_t> flat(128 * 110, uint16_t{512}), marked = flat;
    marked[static_cast<size_t>((2 * 24 + 1) * 128 + 2 * 24)] = 256; // node (3, 3) of plane 2
    marked[static_cast<size_t>(2 * 32 * 128 + 2 * 40 + 1)] = 20;    // node (5, 4) of plane 1
    for (const int32_t algorithm : {2, 3, 4})
        for (const int32_t percent : {100, 80}) {
            const bool samples = algorithm != 3;
            Guarded<uint16_t> raw(samples ? marked : flat, Against::back);
            const Case c = {algorithm, 128, 110, 8, samples ? 0 : 2};
            Call call(c, percent);
            const AllocationScope scope;
            ASSERT_EQ(lsc2d_calibration_wrapper(raw.data(), &call.info), 0) << algorithm;
            for (int plane = 0; plane < 4; ++plane)
                for (int j = -1; j < 9; ++j)
                    for (int i = -1; i < 10; ++i) {
                        const double dx = 8 * i - 32, dy = 8 * j - 27.5, share = percent / 100.0;
                        const double square =
                            1 + (share * share - 1) * (dx * dx + dy * dy) / (32 * 32 + 27.5 * 27.5);
                        const bool half = samples && plane == 2 && i == 3 && j == 3;
                        const bool dark = samples && plane == 1 && i == 5 && j == 4;
                        const double unshaded = half ? 2048 : dark ? 26214.4 : 1024;
                        const double gain =
                            std::min(unshaded * std::sqrt(square), double{ZERKLSC_HIGHEST_GAIN});
                        ASSERT_NEAR(call.tables->table[plane][static_cast<size_t>((j + 1) * 11 + i + 1)],
                                    gain, 1)
                            << "algorithm " << algorithm << ", plane " << plane << ", node " << i << ' ' << j;
                    }
            EXPECT_EQ(raw.copy(), samples ? marked : flat);
            EXPECT_EQ(call.same_weights(Call(c)), algorithm != 4);
        }
}

} // namespace
