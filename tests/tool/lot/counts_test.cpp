// What is counted of a lot, one value and one serial at a time, and which modules are far from the others.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "lot/distances.h"
#include "lot/four_digits.h"
#include "lot/sequence.h"
#include "lot/serial_set.h"

namespace zerklsc::tool {
namespace {

TEST(FourDigits, KeepTheOrderOfAllNumbers) {
    const std::pair<double, const char*> cases[] = {{0, "0"},
                                                    {1, "1"},
                                                    {-1, "-1"},
                                                    {0.1, "0.1"},
                                                    {1234.4, "1234"},
                                                    {1234.6, "1235"},
                                                    {9999.4, "9999"},
                                                    {9999.6, "10000"},
                                                    {0.00099996, "0.001"},
                                                    {-0.012345678, "-0.01235"},
                                                    {1e300, "1e+300"},
                                                    {-7e-300, "-7e-300"},
                                                    {65535, "65540"},
                                                    {100, "100"},
                                                    {2e-320, "2e-320"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(fmt::format("{:.4g}", number_of(four_digits_of(value))),
                  fmt::format("{:.4g}", std::strtod(text, nullptr)));
    int32_t before = four_digits_of(-1e308);
    for (const double sign : {-1.0, 1.0})
        for (int i = 0; i < 36000; ++i) {
            const int place = sign < 0 ? 35999 - i : i;
            const double value =
                sign
                * std::strtod(fmt::format("{}e{}", 1000 + place % 9000, place / 9000 - 5).c_str(), nullptr);
            EXPECT_GT(four_digits_of(value), before) << value;
            EXPECT_EQ(number_of(before = four_digits_of(value)), value);
        }
}

ValueCounts counts_of(const std::vector<int32_t>& values) {
    ValueCounts counts;
    for (const int32_t value : values)
        counts.add(value);
    return counts;
}

TEST(ValueCounts, HasTheStatisticsOfItsValues) {
    const struct {
        std::vector<int32_t> values;
        double median, mean, deviation, robust;
    } cases[] = {{{}, 0, 0, 0, 0},
                 {{7}, 7, 7, 0, 0},
                 {{-64, -65, 63, 64}, -0.5, -0.5, std::sqrt((2 * 63.5 * 63.5 + 2 * 64.5 * 64.5) / 3), 64},
                 {{5, 1, 2, 1, 128}, 2, 27.4, std::sqrt(12661.2 / 4), 1},
                 {{3, 3, 3, 4}, 3, 3.25, 0.5, 0},
                 {{-200, 200}, 0, 0, std::sqrt(80000), 200}};
    for (const auto& c : cases) {
        const ValueCounts counts = counts_of(c.values);
        EXPECT_EQ(counts.total(), c.values.size());
        EXPECT_EQ(median_of(counts), c.median);
        EXPECT_DOUBLE_EQ(mean_of(counts), c.mean);
        EXPECT_DOUBLE_EQ(standard_deviation_of(counts), c.deviation);
        EXPECT_NEAR(robust_deviation_of(counts), 1.482602 * c.robust, 1e-4 * c.robust);
    }
    const ValueCounts twenty =
        counts_of({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 200});
    const std::pair<double, int32_t> quantiles[] = {{0, 1},    {0.05, 1},  {0.051, 2},   {0.1, 2},
                                                    {0.5, 10}, {0.95, 19}, {0.951, 200}, {1, 200}};
    for (const auto& [fraction, value] : quantiles)
        EXPECT_EQ(quantile_of(twenty, fraction), value) << fraction;
    // In any order, and of parts.
    ValueCounts parts = counts_of({64, -65});
    parts.add(counts_of({63, -64}));
    parts.add(1000, 3);
    std::string listed;
    parts.each([&](int32_t value, uint32_t count) { listed += fmt::format("{}x{} ", count, value); });
    EXPECT_EQ(listed, "1x-65 1x-64 1x63 1x64 3x1000 ");
}

TEST(Sequence, IsInTheFewestSerialsThatSixtyFourBlocksHold) {
    const std::pair<const char*, std::optional<uint64_t>> serials[] = {
        {"", std::nullopt},
        {"M-K", std::nullopt},
        {"7", 7},
        {"A0017-B", 17},
        {"12ab34", 34},
        {"1a", 1},
        {"123456789012345678", 123456789012345678},
        {"x9123456789012345678", 123456789012345678},
        {"0000000000000000000009", 9}};
    for (const auto& [serial, number] : serials)
        EXPECT_EQ(serial_number(serial), number) << serial;
    const struct {
        std::vector<uint64_t> numbers;
        int shift;
        std::vector<uint64_t> blocks;
    } cases[] = {{{7}, 0, {7}},
                 {{100, 163}, 0, {100, 163}},
                 {{100, 164}, 1, {50, 82}},
                 {{164, 101, 100}, 1, {50, 82}},
                 {{0, 127, 1}, 1, {0, 63}},
                 {{0, 128, 1}, 2, {0, 32}},
                 {{63, 64, 128}, 1, {31, 32, 64}},
                 {{0, UINT64_MAX}, 58, {0, 63}}};
    for (const auto& c : cases) {
        Sequence all, other;
        SequenceBlock block;
        block.modules = 1;
        for (size_t i = 0; i < c.numbers.size(); ++i) {
            all.add(c.numbers[i], block);
            Sequence one;
            one.add(c.numbers[i], block);
            other.add(one);
        }
        for (const Sequence& sequence : {all, other}) {
            EXPECT_EQ(sequence.shift(), c.shift) << c.numbers.back();
            std::vector<uint64_t> blocks;
            uint64_t modules = 0;
            for (const auto& [number, of] : sequence.blocks()) {
                blocks.push_back(number);
                modules += of.modules;
            }
            EXPECT_EQ(blocks, c.blocks);
            EXPECT_EQ(modules, c.numbers.size());
        }
    }
    Sequence read;
    EXPECT_TRUE(read.set(63, {{5, {}}, {68, {}}}) && read.set(0, {}) && read.set(0, {{9, {}}}));
    EXPECT_FALSE(read.set(64, {}) || read.set(0, {{5, {}}, {69, {}}}));
}

// The marks were computed by another program.
TEST(SerialSet, VisitsEachSerialOnce) {
    EXPECT_EQ(mark_of(""), 0x6fd01f60ba992926U);
    EXPECT_EQ(mark_of("A0001"), 0x23012c57a77acfc9U);
    EXPECT_EQ(mark_of("\xC3\xBC"
                      "7"),
              0x79f320175dcaab39U);
    SerialSet set;
    std::vector<uint64_t> marks;
    for (uint64_t i = 0; i < 3000; ++i) {
        marks.push_back(i * 1024 + 1 + i % 3);
        EXPECT_EQ(set.visit(marks.back()), SerialSet::Visit::unknown);
        EXPECT_TRUE(set.insert(marks.back()));
        EXPECT_FALSE(set.insert(marks[i / 2]));
        if (i % 2 == 0) {
            EXPECT_EQ(set.visit(marks.back()), SerialSet::Visit::first);
        }
    }
    EXPECT_EQ(set.sorted(), marks);
    EXPECT_EQ(set.size(), 3000U);
    EXPECT_EQ(set.visited(), 1500U);
}

// Frames of 96 x 64 with a step of 16 have tables of 6 x 5 nodes, of which 4 x 3 are no border.
ResultLine module_of(int number, int gain) {
    ResultLine result;
    result.serial = fmt::format("S{:02}", number);
    result.verdict = ModuleVerdict::pass;
    result.frame = {96, 64, 10, BayerPattern::gbrg, {64, 65, 66, 67}};
    result.grid = {2, 16, 6, 5, 4, 100};
    result.gains.emplace();
    for (auto& plane : *result.gains)
        plane.assign(30, static_cast<uint16_t>(gain));
    result.optical_centre = {{{0.5, 0.5}, {0.5, 0.5}, {0.5, 0.5}, {0.5, 0.5}}};
    return result;
}

// What is said of one more module among equal ones, with its severity.
std::string said_of(ResultLine other, int gain, int equal = 12) {
    LotSummary lot;
    for (int i = 0; i < equal; ++i)
        lot.add(module_of(i, gain), "line");
    lot.add(other, "line");
    LotDistances distances(lot);
    distances.add(other);
    std::string said;
    for (const LotOutlier& outlier : distances.listed())
        said += fmt::format("{:.4f} {:.4f} {}", outlier.severity, outlier.module.distance, outlier.reason);
    return said;
}

TEST(LotDistances, HasItsLimitsWhereTheyAre) {
    const auto with = [](int gain, int first, int last, int more, size_t colour = 2) {
        ResultLine result = module_of(77, gain);
        for (int node = first; node <= last; ++node)
            (*result.gains)[colour][static_cast<size_t>(node)] = static_cast<uint16_t>(gain + more);
        return result;
    };
    // A gain of 1024 is uncertain by 2 at least, and one below 512 by 1: a node by 7 of them, a plane by 3.5.
    EXPECT_EQ(said_of(with(1024, 15, 15, 14), 1024), "");
    EXPECT_EQ(said_of(with(1024, 15, 15, 15), 1024),
              "1.0714 1.0825 one gain of Gb 7.50 deviations off, at node 2,1: 1.015 instead of 1.000");
    EXPECT_EQ(said_of(with(1024, 22, 22, -15, 3), 1024),
              "1.0714 1.0825 one gain of B 7.50 deviations off, at node 3,2: 0.985 instead of 1.000");
    EXPECT_EQ(said_of(with(300, 7, 7, 7), 300), "");
    EXPECT_EQ(said_of(with(300, 7, 7, 8), 300),
              "1.1429 1.1547 one gain of Gb 8.00 deviations off, at node 0,0: 0.301 instead of 0.293");
    EXPECT_EQ(said_of(with(1024, 0, 29, 7), 1024), "");
    EXPECT_EQ(said_of(with(1024, 0, 29, 8, 0), 1024),
              "1.1429 2.0000 gains of R 4.00 deviations off, most at node 0,0: 1.008 instead of 1.000");
    // The border counts for nothing, and eight modules and this one are too few.
    for (const auto& [first, last] : {std::pair(0, 6), {11, 12}, {17, 18}, {23, 29}})
        EXPECT_EQ(said_of(with(1024, first, last, 900), 1024), "");
    EXPECT_EQ(said_of(with(1024, 0, 29, 90), 1024, 8), "");
    EXPECT_NE(said_of(with(1024, 0, 29, 90), 1024, 9), "");
    // A centre by 3.5 of a twentieth of a percent.
    for (const double place : {0.5017, 0.4983, 0.5018, 0.4982}) {
        ResultLine result = module_of(77, 1024);
        (*result.optical_centre)[1][1] = place;
        const bool far = std::abs(place - 0.5) > 0.00175;
        EXPECT_EQ(said_of(result, 1024),
                  far ? fmt::format(
                      "1.0286 0.0000 optical centre of Gr 3.60 deviations off: y is {:.4f} instead of 0.5000",
                      place)
                      : "");
    }
}

TEST(LotDistances, FindsTheNearestGoodModuleAndTheWorst) {
    LotSummary lot;
    std::vector<ResultLine> modules;
    for (int i = 0; i < 230; ++i) {
        modules.push_back(module_of(i, i < 20 ? 1034 : i < 215 ? 1024 : 1200));
        modules.back().verdict = i % 2 == 0   ? ModuleVerdict::fail
                                 : i % 3 == 0 ? ModuleVerdict::warn
                                              : ModuleVerdict::pass;
        lot.add(modules.back(), "line");
    }
    LotDistances distances(lot);
    for (auto module = modules.rbegin(); module != modules.rend(); ++module)
        distances.add(*module);
    EXPECT_EQ(distances.nearest()->serial, "S101"); // the first of the good ones in the order of letters
    EXPECT_EQ(distances.nearest()->distance, 0);
    EXPECT_EQ(distances.outliers(), 35U);
    EXPECT_EQ(distances.listed().front().module.serial, "S215");
    EXPECT_EQ(distances.listed()[15].module.serial, "S00");
}

} // namespace
} // namespace zerklsc::tool
