// Where a lot's blocks of serials end, and from where on a module is far from the others.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>

#include "lot/distances.h"
#include "lot/sequence.h"

namespace zerklsc::tool {
namespace {

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

} // namespace
} // namespace zerklsc::tool
