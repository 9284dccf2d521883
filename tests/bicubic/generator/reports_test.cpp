#include "bicubic/generator/flat_field.h"
#include "support/allocations.h"
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

// The colours of planes 0 to 3.
const char* const colours[4][4] = {{"Gr ", "R ", "B ", "Gb "},
                                   {"R ", "Gr ", "Gb ", "B "},
                                   {"B ", "Gb ", "Gr ", "R "},
                                   {"Gb ", "B ", "R ", "Gr "}};

// Bright and black samples, and a right edge so dark that its continuation falls below 0.
void paint_faults(FlatField& field, Random& random) {
    field.paint([&](int x, int y) {
        const int64_t dice = random.between(0, 400);
        const int level = x / 2 >= field.param.width / 2 - 2 ? 30 : 500 + 40 * plane_at(x, y);
        return dice == 0 ? 1200 : dice < 20 && plane_at(x, y) == 1 ? 0 : level;
    });
}

TEST(Reports, CountWhatIsPrintedAndLeaveTheSameTables) {
    Random random(12);
    uint32_t clipped = 0, capped = 0, dark = 0;
    for (int round = 0; round < 60; ++round) {
        const int isp_type = round % 4, pattern = round / 4 % 4;
        const int width = 100 + static_cast<int>(random.between(0, 30)), height = 100 + round % 7;
        for (const Pair& generator : generators) {
            FlatField printed(width, height, 9 + round % 8, isp_type),
                silent(width, height, 9 + round % 8, isp_type);
            for (FlatField* field : {&printed, &silent}) {
                Random same(static_cast<uint64_t>(round));
                paint_faults(*field, same);
                field->param.bayer_pattern = static_cast<uint8_t>(pattern);
                field->param.blc[round % 4] = 40;
                field->param.shading_percent = 60;
            }
            const std::string text = printed.run(generator.prints);
            zerklsc_report report;
            EXPECT_EQ(silent.run([&](const uint16_t* raw, isp_param_tag* param) {
                EXPECT_EQ(generator.reports(raw, param, &report), ZERKLSC_OK);
                return 0;
            }),
                      "");
            EXPECT_EQ(silent.raw.copy(), printed.raw.copy());
            EXPECT_EQ(silent.param.corner_ratio, printed.param.corner_ratio);
            const int highest = isp_type == 0 ? 1024 : isp_type == 1 ? 4095 : 16383;
            for (int plane = 0; plane < 4; ++plane) {
                const size_t c = static_cast<size_t>(plane);
                EXPECT_EQ(silent.tables[c]->copy(), printed.tables[c]->copy());
                EXPECT_EQ(report.clipped_samples[c],
                          lines_with(text, std::string("Warning:") + colours[pattern][plane]));
                uint32_t at_the_cap = 0;
                for (int n = 0; n < printed.grid_w * printed.grid_h; ++n)
                    at_the_cap += printed.gain(plane, n % printed.grid_w, n / printed.grid_w) == highest;
                EXPECT_EQ(report.capped_nodes[c], at_the_cap) << plane;
                clipped += report.clipped_samples[c];
                capped += at_the_cap;
            }
            EXPECT_EQ(report.dark_row_ends, lines_with(text, "Warning:raw image data"));
            dark += report.dark_row_ends;
        }
    }
    EXPECT_TRUE(clipped > 1000 && capped > 100 && dark > 100) << clipped << ' ' << capped << ' ' << dark;
}

TEST(Reports, EachRefusalHasItsStatusAndWritesNothing) {
    const struct {
        int width, height, step, isp_type, pattern, margin;
        zerklsc_status orvel, halvane;
    } cases[] = {{120, 104, 8, 3, 4, 3, ZERKLSC_UNKNOWN_PATTERN, ZERKLSC_UNKNOWN_PATTERN},
                 {120, 104, 512, 3, 0, 3, ZERKLSC_BAD_STEP, ZERKLSC_BAD_STEP},
                 {120, 104, 8, 3, 0, 52, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 8, 3, 0, -1, ZERKLSC_BAD_RADIUS, ZERKLSC_BAD_RADIUS},
                 {120, 104, 52, 2, 0, 3, ZERKLSC_TOO_FEW_NODES, ZERKLSC_TOO_FEW_NODES},
                 {120, 104, 8, 4, 0, 3, ZERKLSC_UNKNOWN_ISP, ZERKLSC_UNKNOWN_ISP},
                 {98, 104, 8, 3, 0, 3, ZERKLSC_OK, ZERKLSC_PLANE_TOO_SMALL},
                 {104, 98, 8, 0, 0, 3, ZERKLSC_OK, ZERKLSC_PLANE_TOO_SMALL}};
    for (const auto& c : cases)
        for (const Pair& generator : generators) {
            const zerklsc_status status = &generator == generators ? c.orvel : c.halvane;
            FlatField field(c.width, c.height, 8, c.isp_type);
            field.param.grid = static_cast<uint16_t>(c.step);
            field.param.bayer_pattern = static_cast<uint8_t>(c.pattern);
            field.param.filter_radius = c.margin;
            field.param.corner_ratio = 5.0;
            zerklsc_report report{.clipped_samples = {7, 7, 7, 7}, .capped_nodes = {}, .dark_row_ends = 7};
            EXPECT_EQ(generator.reports(field.raw.data(), &field.param, &report), status) << &c - cases;
            EXPECT_EQ(field.all_tables_are(untouched), status != ZERKLSC_OK) << &c - cases;
            EXPECT_EQ(report.dark_row_ends, status == ZERKLSC_OK ? 0u : 7u) << &c - cases;
            EXPECT_TRUE(status == ZERKLSC_OK || field.param.corner_ratio == 5.0) << &c - cases;
        }
}

TEST(Reports, MissingPointersAndMemoryAreNamedAndTheReportMayBeMissing) {
    for (const Pair& generator : generators) {
        FlatField field(120, 104, 8);
        EXPECT_EQ(generator.reports(nullptr, &field.param, nullptr), ZERKLSC_NULL_POINTER);
        EXPECT_EQ(generator.reports(field.raw.data(), nullptr, nullptr), ZERKLSC_NULL_POINTER);
        bool failed = true;
        for (size_t n = 0; failed; ++n) {
            AllocationScope heap(n);
            const zerklsc_status status = generator.reports(field.raw.data(), &field.param, nullptr);
            failed = heap.failed();
            EXPECT_EQ(status, failed ? ZERKLSC_NO_MEMORY : ZERKLSC_OK);
            EXPECT_EQ(field.all_tables_are(untouched), failed);
            EXPECT_TRUE(heap.leftovers().empty());
        }
        field.param.lsc_table[2] = nullptr;
        EXPECT_EQ(generator.reports(field.raw.data(), &field.param, nullptr), ZERKLSC_NULL_POINTER);
    }
}

} // namespace
} // namespace zerklsc::testing
