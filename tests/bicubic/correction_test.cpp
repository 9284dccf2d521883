#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "bicubic/correction_model.h"
#include "support/allocations.h"
#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

constexpr int isps[2] = {ZERKLSC_ISP_TVESSA2, ZERKLSC_ISP_VESSAL2};

class Correction : public ::testing::Test {
  protected:
    Correction() { ::testing::internal::CaptureStdout(); }
    // Drops the warnings about narrow slices; failures are printed to the same place.
    ~Correction() override {
        const std::string printed = ::testing::internal::GetCapturedStdout();
        if (HasFailure())
            std::puts(printed.c_str());
    }

    // The library's result between guard pages.
    std::vector<uint16_t> run(const CorrectionModel& model, bool in_place = false) {
        const Against side = ++runs % 2 == 0 ? Against::front : Against::back;
        Guarded<uint16_t> in(model.in, side), out(in_place ? 0 : model.in.size(), side);
        std::unique_ptr<Guarded<uint16_t>> tables[4];
        Guarded<isp_param_tag> param(1, side);
        param[0] = {};
        for (size_t t = 0; t < 4; ++t) {
            tables[t] = std::make_unique<Guarded<uint16_t>>(model.tables[t], side);
            param[0].lsc_table[t] = tables[t]->data();
        }
        const bool vessal2 = model.isp == ZERKLSC_ISP_VESSAL2;
        param[0].grid = static_cast<uint16_t>(model.step + (vessal2 ? 0 : 256 * (runs % 3)));
        param[0].width = static_cast<uint16_t>(model.width);
        param[0].height = static_cast<uint16_t>(model.height);
        const isp_param_tag before = param[0];
        Guarded<uint16_t>& result = in_place ? in : out;
        EXPECT_EQ((vessal2 ? bicubic_lnc_correction_vessaL2
                           : bicubic_lnc_correction_tvessa2)(in.data(), result.data(), param.data()),
                  0);
        EXPECT_EQ(std::memcmp(param.data(), &before, sizeof before) != 0, vessal2);
        EXPECT_TRUE(in.intact() && out.intact() && param.intact());
        return result.copy();
    }

    void compare(size_t width, size_t height, size_t step) {
        for (int isp : isps) {
            const CorrectionModel model(isp, width, height, step, random, Spread(random.between(0, 2)));
            const bool in_place = runs % 3 == 0;
            ASSERT_EQ(run(model, in_place), model.corrected())
                << isp << ": " << width << " x " << height << ", step " << step
                << (in_place ? ", in place" : "");
        }
    }

    // Samples of 100 under tables whose node i holds the gain gain(i).
    template <class Gain>
    std::vector<uint16_t> run_flat(int isp, size_t width, size_t height, const Gain& gain) {
        CorrectionModel model(isp, width, height, 16, random, Spread::any);
        std::fill(model.in.begin(), model.in.end(), uint16_t{100});
        for (auto& table : model.tables)
            for (size_t i = 0; i < table.size(); ++i)
                table[i] = static_cast<uint16_t>(1024 * gain(i, model.table_w));
        return run(model);
    }

    Random random{20};
    size_t runs = 0;
};

TEST_F(Correction, EverySmallGeometryIsTheModel) {
    for (size_t step = 1; step <= 4; ++step)
        for (size_t width = 0; width <= 4 * step + 9; ++width)
            for (size_t height = 0; height <= 4 * step + 5; ++height)
                ASSERT_NO_FATAL_FAILURE(compare(width, height, step));
}

TEST_F(Correction, EveryStepIsTheModel) {
    for (size_t step = 1; step <= 255; ++step)
        for (size_t cells = step < 36 ? 1 : 1 + step % 3; cells <= 1 + step % 3; ++cells)
            for (size_t size = 2 * step * cells - 2; size <= 2 * step * cells + 3; ++size) {
                ASSERT_NO_FATAL_FAILURE(compare(size, step % 5, step));
                ASSERT_NO_FATAL_FAILURE(compare(step % 7, size, step));
            }
}

TEST_F(Correction, LastHalfColumnTakesPhaseOneOfItsCell) {
    for (int isp : isps) {
        const auto out =
            run_flat(isp, 2 * 65, 4, [](size_t i, size_t row_length) { return 1 + i % row_length; });
        // The ramp is 6.0 at the node and 1/16 more at phase 1. The tvessa2 ISP has no column 7: it reads 1.0
        // from the next row, so that the gain is 5 * -28 + 6 * 1014 + 7 * 40 + 1 * -2 = 6222.
        EXPECT_EQ(out[126], 594) << isp;
        EXPECT_EQ(out[128], isp == ZERKLSC_ISP_VESSAL2 ? 606 : 608) << isp;
        EXPECT_EQ(out[129], out[128]) << isp;
    }
}

TEST_F(Correction, LastHalfRowTakesItOnlyInRefilledColumns) {
    for (int isp : isps) {
        const auto out =
            run_flat(isp, 160, 2 * 17, [](size_t i, size_t row_length) { return 1 + i / row_length; });
        EXPECT_EQ(out[33 * 160], 300) << isp;       // phase 0 of the cell below node row 2
        EXPECT_EQ(out[33 * 160 + 159], 206) << isp; // phase 1 of the cell below node row 1
    }
}

TEST_F(Correction, GainsBelowUnityAreUnityAndSamplesAreLimited) {
    for (int isp : isps)
        for (size_t gain : {0u, 500u, 1024u}) {
            CorrectionModel model(isp, 1024, 64, 32, random, Spread::any);
            for (size_t i = 0; i < model.in.size(); ++i)
                model.in[i] = static_cast<uint16_t>(i);
            for (auto& table : model.tables)
                std::fill(table.begin(), table.end(), static_cast<uint16_t>(gain));
            const auto out = run(model, true);
            for (size_t i = 0; i < out.size(); ++i)
                ASSERT_EQ(out[i], std::min<size_t>(i, 1023)) << isp;
        }
}

TEST_F(Correction, ProductsAreComparedIn16Bits) {
    for (int isp : isps) {
        CorrectionModel model(isp, 4, 2, 8, random, Spread::high);
        model.in = {1023, 4096, 4097, 4098, 64, 65, 0, 1};
        // 4097 * 16383 + 512 is 65548 * 1024 and a rest, of which 16 bits keep 12.
        EXPECT_EQ(run(model), (std::vector<uint16_t>{1023, 1023, 12, 28, 1023, 1023, 0, 16})) << isp;
    }
}

using Function = int32_t (*)(uint16_t*, uint16_t*, isp_param_tag*);
constexpr Function functions[] = {bicubic_lnc_correction_vessaL2, bicubic_lnc_correction_vessaL2_core,
                                  bicubic_lnc_correction_tvessa2};

TEST(CorrectionArguments, FirstFaultPrintsItsLineAndNothingIsWritten) {
    uint16_t table[64] = {}, in[16] = {5}, out[16] = {};
    const char* const no_in = "The lens_correction input data pointer is NULL.\n";
    const char* const no_out = "The lens_correction output data pointer is NULL.\n";
    const char* const no_table = "The lens correction input parameter pointer is NULL.\n";
    const struct {
        uint16_t *in, *out;
        uint16_t missing_table, grid;
        const char* message;
    } cases[] = {{nullptr, nullptr, 0, 2, no_in},
                 {in, nullptr, 1, 2, no_out},
                 {in, out, 0, 2, no_table},
                 {in, out, 1, 2, no_table},
                 {in, out, 2, 2, no_table},
                 {in, out, 3, 0, no_table},
                 {in, out, 9, 0, ""},
                 {in, out, 9, 256, ""},
                 {in, out, 9, 512, ""}};
    for (const auto& c : cases)
        for (Function function : functions) {
            isp_param_tag param{};
            for (int t = 0; t < 4; ++t)
                param.lsc_table[t] = t == c.missing_table ? nullptr : table;
            param.width = param.height = 4;
            param.grid = c.grid;
            ::testing::internal::CaptureStdout();
            EXPECT_EQ(function(c.in, c.out, &param), function == bicubic_lnc_correction_vessaL2 ? 0 : -1);
            EXPECT_EQ(::testing::internal::GetCapturedStdout(), c.message);
        }
    EXPECT_EQ(std::count(out, out + 16, 0), 16);
}

TEST(CorrectionArguments, NarrowSliceIsAWarning) {
    uint16_t table[64] = {}, frame[256];
    const struct {
        uint16_t width, height;
        const char* message;
    } cases[] = {{100, 1, "\ncurrent iSliceWidth = 100 is smaller than 128!\n"},
                 {127, 0, "\ncurrent iSliceWidth = 127 is smaller than 128!\n"},
                 {0, 2, "\ncurrent iSliceWidth = 0 is smaller than 128!\n"},
                 {128, 2, ""}};
    for (const auto& c : cases) {
        isp_param_tag param{};
        for (uint16_t*& t : param.lsc_table)
            t = table;
        param.grid = 32;
        param.width = c.width;
        param.height = c.height;
        std::fill(frame, frame + 256, uint16_t{2000});
        ::testing::internal::CaptureStdout();
        const AllocationScope heap(0);
        for (Function function : functions)
            EXPECT_EQ(function(frame, frame, &param), 0);
        EXPECT_TRUE(c.width < 128 || heap.requests() == 0);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(std::count(frame, frame + 256, 1023), c.width * c.height);
    }
}

TEST(CorrectionArguments, Vessal2RewritesTheWeightBlockThatItsCoreReads) {
    uint16_t table[16], frame[4] = {100, 100, 100, 100};
    for (int i = 0; i < 16; ++i)
        table[i] = static_cast<uint16_t>(1000 + 64 * i);
    isp_param_tag param{};
    for (uint16_t*& t : param.lsc_table)
        t = table;
    param.width = param.height = param.grid = 2;
    // Weights of 0 leave everything to the last node, whose gain is 1960.
    EXPECT_EQ(bicubic_lnc_correction_vessaL2_core(frame, frame, &param), 0);
    EXPECT_EQ(std::count(frame, frame + 4, 191), 4);
    EXPECT_EQ(param.weight.weights[0][1], 0);
    param.weight.weights[127][2] = param.weight.weights[1][0] = 5;
    lnc_bicubic_weight_t_64_tag expected;
    generate_bicubic_weight_table(&expected, 2);
    EXPECT_EQ(bicubic_lnc_correction_vessaL2(frame, frame, &param), 0);
    EXPECT_EQ(std::memcmp(&param.weight, &expected, sizeof expected), 0);
}

} // namespace
