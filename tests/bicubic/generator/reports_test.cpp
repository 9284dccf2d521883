#include "bicubic/generator/flat_field.h"
#include "support/random.h"
#include "zerklsc_driver.h"

namespace zerklsc::testing {
namespace {

struct Pair {
    int32_t (*prints)(uint16_t* raw, isp_param_tag* param);
    zerklsc_status (*reports)(const uint16_t* raw, isp_param_tag* param, zerklsc_report* report);
};
const Pair generators[] = {
    {bicubic_lnc_param_gen_orvel_otp,
     [](const uint16_t* raw, isp_param_tag* param, zerklsc_report* report) {
         return zerklsc_generate_orvel_otp(raw, param, report);
     }},
    {bicubic_lnc_param_gen_halvane, zerklsc_generate_halvane},
};

uint32_t lines_with(const std::string& text, const std::string& words) {
    uint32_t lines = 0;
    for (size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1))
        ++lines;
    return lines;
}

// Bright and black samples, and a right edge so dark that its continuation falls below 0.
void paint_faults(FlatField& field, Random& random) {
    field.paint([&](int x, int y) {
        const int64_t dice = random.between(0, 400);
        const int level = x / 2 >= field.param.width / 2 - 2 ? 30 : 500 + 40 * plane_at(x, y);
        return dice == 0 ? 1200 : dice < 20 && plane_at(x, y) == 1 ? 0 : level;
    });
}

// A field with faults, of a size, step, ISP type, pattern and black level that follow from the round.
struct FaultyField : FlatField {
    explicit FaultyField(int round) : FlatField(100 + round % 31, 100 + round % 7, 9 + round % 8, round % 4) {
        Random random(static_cast<uint64_t>(round));
        paint_faults(*this, random);
        param.bayer_pattern = static_cast<uint8_t>(round / 4 % 4);
        param.blc[round % 4] = 40;
        param.shading_percent = 60;
    }

    uint32_t nodes_at(int plane, int wanted) {
        uint32_t count = 0;
        for (int n = 0; n < grid_w * grid_h; ++n)
            count += gain(plane, n % grid_w, n / grid_w) == wanted;
        return count;
    }
};

// Compares the two forms of a generator; what the report says is added to `all`.
void compare(const Pair& generator, int round, zerklsc_report& all) {
    FaultyField printed(round), silent(round);
    const std::string text = printed.run(generator.prints);
    zerklsc_report report;
    const auto reporting = [&](const uint16_t* raw, isp_param_tag* param) {
        return static_cast<int>(generator.reports(raw, param, &report));
    };
    EXPECT_EQ(silent.run(reporting), "");
    EXPECT_EQ(silent.raw.copy(), printed.raw.copy());
    EXPECT_EQ(silent.param.corner_ratio, printed.param.corner_ratio);
    constexpr int highest[4] = {1024, 4095, 16383, 16383}; // by ISP type
    for (int plane = 0; plane < 4; ++plane) {
        const size_t c = static_cast<size_t>(plane);
        const std::string line = std::string("Warning:") + colours[silent.param.bayer_pattern][plane] + " ";
        EXPECT_EQ(silent.tables[c]->copy(), printed.tables[c]->copy());
        EXPECT_EQ(report.clipped_samples[c], lines_with(text, line));
        EXPECT_EQ(report.capped_nodes[c], printed.nodes_at(plane, highest[silent.param.isp_type])) << plane;
        all.clipped_samples[c] += report.clipped_samples[c];
        all.capped_nodes[c] += report.capped_nodes[c];
    }
    EXPECT_EQ(report.dark_row_ends, lines_with(text, "Warning:raw image data"));
    all.dark_row_ends += report.dark_row_ends;
}

TEST(Reports, CountWhatIsPrintedAndLeaveTheSameTables) {
    zerklsc_report all{};
    for (int round = 0; round < 60; ++round)
        for (const Pair& generator : generators)
            compare(generator, round, all);
    for (size_t plane = 0; plane < 4; ++plane)
        EXPECT_GT(all.clipped_samples[plane], 100u) << plane;
    EXPECT_TRUE(all.capped_nodes[1] > 100 && all.dark_row_ends > 100);
}

TEST(Reports, EachRefusalHasItsStatusAndWritesAndPrintsNothing) {
    const struct {
        int width, height, step, isp_type, pattern, margin;
        zerklsc_status orvel, halvane;
    } cases[] = {{120, 104, 8, 3, 4, 3, ZERKLSC_UNKNOWN_PATTERN, ZERKLSC_UNKNOWN_PATTERN},
                 {120, 104, 512, 3, 0, 3, ZERKLSC_BAD_STEP, ZERKLSC_BAD_STEP},
                 {120, 104, 8, 3, 0, 52, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {104, 120, 8, 3, 0, 52, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 8, 3, 0, -1, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 8, 3, 0, INT32_MIN, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 8, 3, 0, INT32_MAX, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 52, 2, 0, 3, ZERKLSC_TOO_FEW_NODES, ZERKLSC_TOO_FEW_NODES},
                 {104, 120, 52, 2, 0, 3, ZERKLSC_TOO_FEW_NODES, ZERKLSC_TOO_FEW_NODES},
                 {120, 104, 8, 4, 0, 3, ZERKLSC_UNKNOWN_ISP, ZERKLSC_UNKNOWN_ISP},
                 {99, 104, 8, 3, 0, 3, ZERKLSC_OK, ZERKLSC_PLANE_TOO_SMALL},
                 {104, 99, 8, 0, 0, 3, ZERKLSC_OK, ZERKLSC_PLANE_TOO_SMALL}};
    for (const auto& c : cases)
        for (const Pair& generator : generators) {
            const zerklsc_status status = &generator == generators ? c.orvel : c.halvane;
            FlatField field(c.width, c.height, 8, c.isp_type);
            field.sample(3, 3) = 2000; // of which a generator that begins prints a line
            field.param.grid = static_cast<uint16_t>(c.step);
            field.param.bayer_pattern = static_cast<uint8_t>(c.pattern);
            field.param.filter_radius = c.margin;
            field.param.corner_ratio = 5.0;
            if (status != ZERKLSC_OK && status != ZERKLSC_UNKNOWN_ISP) { // that type is done with gains of 0
                EXPECT_EQ(field.run(generator.prints, -1), "") << &c - cases;
            }
            zerklsc_report report{.clipped_samples = {7, 7, 7, 7}, .capped_nodes = {}, .dark_row_ends = 7};
            EXPECT_EQ(generator.reports(field.raw.data(), &field.param, &report), status) << &c - cases;
            EXPECT_EQ(field.all_tables_are(untouched), status != ZERKLSC_OK) << &c - cases;
            EXPECT_EQ(report.dark_row_ends, status == ZERKLSC_OK ? 0u : 7u) << &c - cases;
            EXPECT_TRUE(status == ZERKLSC_OK || field.param.corner_ratio == 5.0) << &c - cases;
        }
}

TEST(Reports, MissingPointersAreNamedAndTheReportMayBeMissing) {
    for (const Pair& generator : generators) {
        FlatField field(120, 104, 8);
        EXPECT_EQ(generator.reports(nullptr, &field.param, nullptr), ZERKLSC_NULL_POINTER);
        EXPECT_EQ(generator.reports(field.raw.data(), nullptr, nullptr), ZERKLSC_NULL_POINTER);
        EXPECT_EQ(generator.prints(nullptr, &field.param), -1);
        EXPECT_EQ(generator.prints(field.raw.data(), nullptr), -1);
        EXPECT_EQ(generator.reports(field.raw.data(), &field.param, nullptr), ZERKLSC_OK);
        field.param.lsc_table[2] = nullptr;
        EXPECT_EQ(generator.prints(field.raw.data(), &field.param), -1);
        EXPECT_EQ(generator.reports(field.raw.data(), &field.param, nullptr), ZERKLSC_NULL_POINTER);
    }
}

} // namespace
} // namespace zerklsc::testing
