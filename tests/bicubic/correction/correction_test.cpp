#include <cstdio>
#include <numeric>
#include <string>

#include <gtest/gtest.h>

#include "bicubic/correction/correction.h"
#include "bicubic/correction/correction_model.h"
#include "support/allocations.h"
#include "support/guarded.h"
#include "support/instruction_sets.h"

#if defined(__x86_64__) || defined(__i386__)
// The vectors of the widest instruction set, built for the base instruction set, and the form without
// vectors.
namespace zerklsc::wide {
void correct_cells(const Correction& correction);
}
namespace zerklsc::words {
void correct_cells(const Correction& correction);
}
constexpr auto correct_wide = zerklsc::wide::correct_cells, correct_words = zerklsc::words::correct_cells;
#else
// No vectors are longer than those that run here, and base may have none.
constexpr auto correct_wide = zerklsc::plain::correct, correct_words = correct_wide;
#endif

namespace {

using namespace zerklsc::testing;

// A model's frame between guard pages.
struct GuardedFrame {
    GuardedFrame(const CorrectionModel& model, Against side)
        : in(model.in, side), out(model.in.size(), side), tables{{model.tables[0], side},
                                                                 {model.tables[1], side},
                                                                 {model.tables[2], side},
                                                                 {model.tables[3], side}},
          param(1, side) {
        param[0] = {};
        for (size_t t = 0; t < 4; ++t)
            param[0].lsc_table[t] = tables[t].data();
        // The tvessa2 ISP reads the low byte of the step.
        param[0].grid = static_cast<uint16_t>(model.step + (model.vessal2 ? 0 : 512));
        param[0].width = static_cast<uint16_t>(model.width);
        param[0].height = static_cast<uint16_t>(model.height);
    }

    Guarded<uint16_t> in, out, tables[4];
    Guarded<isp_param_tag> param;
};

class Correction : public ::testing::Test {
  protected:
    Correction() { ::testing::internal::CaptureStdout(); }
    // Drops the warnings about narrow slices; failures are printed to the same place.
    ~Correction() override {
        unsetenv("ZERKLSC_CPU");
        const std::string printed = ::testing::internal::GetCapturedStdout();
        if (HasFailure())
            std::puts(printed.c_str());
    }

    // One of the forms that the library does not choose here, on the frame's record with its own weights.
    template <class Form>
    static void correct(const CorrectionModel& model, const Form& form, uint16_t* out, GuardedFrame& frame) {
        zerklsc::Correction c = zerklsc::frame_correction(frame.in.data(), out, frame.param[0]);
        c.step = static_cast<int32_t>(model.step);
        c.table_w = static_cast<int32_t>(model.table_w);
        c.table_h = static_cast<int32_t>(model.tables[0].size() / model.table_w);
        for (int32_t i = 0; i < c.step; ++i)
            c.phases[i] = model.vessal2 ? zerklsc::programmed_phase(frame.param[0].weight, i, c.step)
                                        : zerklsc::fixed_phase(i, c.step);
        form(c);
    }

    // The library's function on each instruction set, the plain form, the widest vectors and none; in place
    // and not.
    void compare(const CorrectionModel& model) {
        const auto expected = model.corrected();
        const auto function = model.vessal2 ? bicubic_lnc_correction_vessaL2 : bicubic_lnc_correction_tvessa2;
        GuardedFrame frame(model, random.between(0, 1) == 0 ? Against::front : Against::back);
        for (const std::string& form : forms) {
            Guarded<uint16_t>& result = random.between(0, 1) == 0 ? frame.in : frame.out;
            std::copy(model.in.begin(), model.in.end(), frame.in.data());
            const auto unchosen = form == "plain"   ? zerklsc::plain::correct
                                  : form == "wide"  ? correct_wide
                                  : form == "words" ? correct_words
                                                    : nullptr;
            if (unchosen != nullptr) {
                correct(model, unchosen, result.data(), frame);
            } else {
                setenv("ZERKLSC_CPU", form.c_str(), 1);
                EXPECT_EQ(function(frame.in.data(), result.data(), frame.param.data()), 0);
            }
            ASSERT_EQ(result.copy(), expected)
                << form << (model.vessal2 ? " vessaL2 " : " tvessa2 ") << model.width << " x " << model.height
                << ", step " << model.step;
        }
        ASSERT_TRUE(frame.in.intact() && frame.out.intact() && frame.param.intact());
        ASSERT_EQ(frame.param[0].weight.weights[0][1], model.vessal2 ? 1024 : 0);
    }

    void compare(size_t width, size_t height, size_t step) {
        for (bool vessal2 : {false, true})
            ASSERT_NO_FATAL_FAILURE(compare(CorrectionModel(vessal2, width, height, step, random)));
    }

    static std::vector<std::string> all_forms() {
        std::vector<std::string> words = instruction_set_words();
        words.insert(words.end(), {"plain", "wide", "words"});
        return words;
    }

    Random random{20};
    const std::vector<std::string> forms = all_forms();
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

TEST_F(Correction, LongRowsAreTheModel) {
    for (size_t width : {257u, 1030u, 2051u})
        for (size_t step : {1u, 2u, 3u, 4u, 7u, 8u, 16u})
            ASSERT_NO_FATAL_FAILURE(compare(width, 4 * step + 2, step));
}

TEST_F(Correction, EverySampleIsCopiedAndLimitedAtOrBelowUnity) {
    for (uint16_t gain : std::initializer_list<uint16_t>{0, 500, 1024}) {
        CorrectionModel model(true, 1024, 64, 32, random);
        std::iota(model.in.begin(), model.in.end(), uint16_t{0});
        for (auto& table : model.tables)
            std::fill(table.begin(), table.end(), gain);
        const auto out = model.corrected();
        for (size_t i = 0; i < out.size(); ++i)
            ASSERT_EQ(out[i], std::min<size_t>(i, 1023));
        compare(model);
    }
}

TEST_F(Correction, ProductsAreComparedIn16Bits) {
    for (bool vessal2 : {false, true}) {
        CorrectionModel model(vessal2, 4, 2, 8, random);
        model.in = {1023, 4096, 4097, 4098, 64, 65, 0, 1};
        for (auto& table : model.tables)
            std::fill(table.begin(), table.end(), uint16_t{65535});
        // 4097 * 16383 + 512 is 65548 * 1024 and a rest, of which 16 bits keep 12.
        EXPECT_EQ(model.corrected(), (std::vector<uint16_t>{1023, 1023, 12, 28, 1023, 1023, 0, 16}));
        compare(model);
    }
}

// All weights that the library makes are for the kernel of the processor: the plain form is 15 times slower.
TEST_F(Correction, PlainFormIsForForeignWeightsOnly) {
    uint16_t sample = 0;
    isp_param_tag param{};
    std::fill(param.lsc_table, param.lsc_table + 4, &sample);
    for (uint16_t step = 1; step <= 255; ++step) {
        param.grid = step;
        generate_bicubic_weight_table(&param.weight, step);
        for (const auto& c : {zerklsc::tvessa2_correction(&sample, &sample, param),
                              zerklsc::vessal2_correction(&sample, &sample, param)})
            ASSERT_NE(zerklsc::fastest_form(c), &zerklsc::plain::correct) << step;
    }
    for (const int16_t weight : {int16_t{-32768}, int16_t{20000}}) {
        param.weight.weights[127][0] = weight;
        const auto c = zerklsc::vessal2_correction(&sample, &sample, param);
        EXPECT_EQ(zerklsc::fastest_form(c), &zerklsc::plain::correct) << weight;
    }
}

// The sums of a record's own weights may overflow where those of the generator cannot.
TEST_F(Correction, CoreTakesForeignWeightsAsThePlainFormDoes) {
    const CorrectionModel model(true, 60, 9, 5, random);
    for (int round = 0; round < 200; ++round) {
        GuardedFrame frame(model, Against::back);
        for (auto& row : frame.param[0].weight.weights)
            for (int16_t& w : row)
                w = static_cast<int16_t>(random.between(-32768, 32767) >> round % 9);
        EXPECT_EQ(bicubic_lnc_correction_vessaL2_core(frame.in.data(), frame.out.data(), frame.param.data()),
                  0);
        const auto out = frame.out.copy();
        correct(model, zerklsc::plain::correct, frame.out.data(), frame);
        ASSERT_EQ(out, frame.out.copy()) << round;
    }
}

using Function = int32_t (*)(uint16_t*, uint16_t*, isp_param_tag*);
constexpr Function functions[] = {bicubic_lnc_correction_vessaL2, bicubic_lnc_correction_vessaL2_core,
                                  bicubic_lnc_correction_tvessa2};

TEST(CorrectionArguments, FirstFaultPrintsItsLineAndNothingIsWritten) {
    uint16_t table[64] = {}, in[16] = {5}, out[16] = {};
    const char* const lines[] = {"The lens_correction input data pointer is NULL.\n",
                                 "The lens_correction output data pointer is NULL.\n",
                                 "The lens correction input parameter pointer is NULL.\n", ""};
    const struct {
        uint16_t *in, *out;
        uint16_t missing_table, grid;
        int line;
        bool has_param = true;
    } cases[] = {{nullptr, nullptr, 0, 2, 0}, {in, nullptr, 1, 2, 1},       {in, out, 0, 2, 2},
                 {in, out, 1, 2, 2},          {in, out, 2, 2, 2},           {in, out, 3, 0, 2},
                 {in, out, 9, 0, 3},          {in, out, 9, 256, 3},         {in, out, 9, 512, 3},
                 {in, out, 9, 2, 2, false},   {in, nullptr, 9, 2, 1, false}};
    for (const auto& c : cases)
        for (Function function : functions) {
            isp_param_tag param{};
            for (int t = 0; t < 4; ++t)
                param.lsc_table[t] = t == c.missing_table ? nullptr : table;
            param.width = param.height = 4;
            param.grid = c.grid;
            ::testing::internal::CaptureStdout();
            EXPECT_EQ(function(c.in, c.out, c.has_param ? &param : nullptr),
                      function == bicubic_lnc_correction_vessaL2 ? 0 : -1);
            EXPECT_EQ(::testing::internal::GetCapturedStdout(), lines[c.line]);
        }
    EXPECT_EQ(std::count(out, out + 16, 0), 16);
}

TEST(CorrectionArguments, NarrowSliceIsAWarning) {
    uint16_t table[64] = {}, frame[256];
    for (int width : {0, 100, 127, 128}) {
        isp_param_tag param{};
        std::fill(param.lsc_table, param.lsc_table + 4, &table[0]);
        param.grid = 32;
        param.width = static_cast<uint16_t>(width);
        param.height = 2;
        std::fill(frame, frame + 256, uint16_t{2000});
        ::testing::internal::CaptureStdout();
        const AllocationScope heap(0);
        for (Function function : functions)
            EXPECT_EQ(function(frame, frame, &param), 0);
        EXPECT_TRUE(width < 128 || heap.requests() == 0);
        const std::string line =
            "\ncurrent iSliceWidth = " + std::to_string(width) + " is smaller than 128!\n";
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), width < 128 ? line : "");
        EXPECT_EQ(std::count(frame, frame + 256, 1023), 2 * width);
    }
}

} // namespace
