// A module's line, as it is written down in docs/scale.md.
#include "line/result_line.h"

#include <gtest/gtest.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

ResultLine full_result() {
    ResultLine result;
    result.serial = "A\"17";
    result.preset = "main.toml";
    result.settings = "0123456789abcdef";
    result.verdict = ModuleVerdict::warn;
    result.reason = "a.raw: dust";
    result.inputs = {{"flats/a.raw", "aa"}, {"flats/b.raw", ""}};
    result.outputs = {{"A17.json", "bb"}};
    result.frame = {640, 482, 12, BayerPattern::gbrg, {64, 65, 66, 67}};
    result.grid = {4, 32, 3, 2, 7, 90};
    result.checks = {{"exposure", "Gr", 0.1, Verdict::pass}, {"dust", "", std::nullopt, Verdict::refuse}};
    result.numbers.flatness = {0.5, 0.25, 0.125, 1e-7};
    result.numbers.otp_bytes = 2475;
    result.numbers.otp_loss = 0.0078;
    result.optical_centre = {{{0.5, 0.25}, {0.51, 0.52}, {0.1, 1}, {0, 0.3}}};
    result.gains = {{{1024, 1025, 1279, 1280, 0, 65535},
                     {1, 2, 3, 4, 5, 6},
                     {7, 8, 9, 10, 11, 12},
                     {13, 14, 15, 16, 17, 18}}};
    result.tool = "1.2.3";
    return result;
}

// The base64 text was made by another program.
constexpr std::string_view full_text =
    R"({"format":"zerklsc-result","version":1,"serial":"A\"17","preset":"main.toml","illuminant":null,)"
    R"("settings":"0123456789abcdef","verdict":"warn","reason":"a.raw: dust",)"
    R"("inputs":[{"file":"flats/a.raw","sha256":"aa"},{"file":"flats/b.raw","sha256":null}],)"
    R"("outputs":[{"file":"A17.json","sha256":"bb"}],)"
    R"("frame":{"width":640,"height":482,"bits":12,"pattern":"GBRG","black_level":[64,65,66,67]},)"
    R"("grid":{"algorithm":4,"step":32,"width":3,"height":2,"filter_radius":7,"shading_percent":90},)"
    R"("checks":[{"name":"exposure","plane":"Gr","value":0.1,"verdict":"pass"},)"
    R"({"name":"dust","plane":null,"value":null,"verdict":"refuse"}],)"
    R"("numbers":{"flatness":{"R":0.5,"Gr":0.25,"Gb":0.125,"B":1e-07},"corner":null,)"
    R"("predicted_flatness":null,"otp_bytes":2475,"otp_loss":0.0078},)"
    R"("optical_centre":{"R":[0.5,0.25],"Gr":[0.51,0.52],"Gb":[0.1,1],"B":[0,0.3]},)"
    R"("gains":{"R":"AAQBBP8EAAUAAP//","Gr":"AQACAAMABAAFAAYA","Gb":"BwAIAAkACgALAAwA",)"
    R"("B":"DQAOAA8AEAARABIA"},"tool":"1.2.3"})";

// The text with the first `from` replaced.
std::string changed(const std::string& from, const std::string& to) {
    std::string text(full_text);
    return text.replace(text.find(from), from.size(), to);
}

TEST(ResultLine, IsWrittenAndReadAsDocumented) {
    EXPECT_EQ(text_of(full_result()), full_text);
    EXPECT_EQ(text_of(result_line_of(full_text, "x:1")), full_text);
}

TEST(ResultLine, OfAModuleThatCouldNotBeReadHasNulls) {
    ResultLine result;
    result.serial = "B2";
    result.reason = "b.raw: no such file";
    result.tool = "1.2.3";
    const std::string text = text_of(result);
    EXPECT_NE(text.find(R"("frame":null,"grid":null,"checks":[],"numbers":{"flatness":null)"),
              std::string::npos);
    EXPECT_NE(text.find(R"("optical_centre":null,"gains":null,"tool":"1.2.3"})"), std::string::npos);
    EXPECT_EQ(text_of(result_line_of(text, "x:1")), text);
}

TEST(ResultLine, RefusesWhatIsTornOrWrong) {
    for (size_t length = 0; length < full_text.size(); ++length)
        EXPECT_THROW(result_line_of(full_text.substr(0, length), "x:1"), Failure) << length;
    const std::pair<const char*, const char*> faults[] = {
        {"zerklsc-result", "zerklsc-tables"},
        {"\"version\":1", "\"version\":2"},
        {"\"serial\"", "\"cereal\""},
        {"\"serial\":\"A\\\"17\"", "\"serial\":17"},
        {"\"verdict\":\"warn\"", "\"verdict\":\"ward\""},
        {"\"width\":640", "\"width\":640.5"},
        {"\"width\":640", "\"width\":18446744073709551615"},
        {"\"grid\":{", "\"grid\":null,\"mesh\":{"},
        {"[64,65,66,67]", "64"},
        {"\"Gr\":0.25", "\"Gr\":\"dim\""},
        {"[0.5,0.25]", "[0.5,null]"},
        {"\"inputs\":[", "\"inputs\":1,\"in\":["},
        {"\"checks\":[", "\"checks\":{},\"more\":["},
        {"[64,65,66,67]", "[64,65,66]"},
        {"\"Gr\":0.25,", ""},
        {"\"width\":3", "\"width\":4"}, // one gain in six too few
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUA"},
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUAAP/*"},
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUAAP/="},
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUAAP/ "},
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUAAA=="},
        {"[0.5,0.25]", "[0.5]"},
    };
    for (const auto& [from, to] : faults)
        EXPECT_THROW(result_line_of(changed(from, to), "x:1"), Failure) << to;
    EXPECT_NO_THROW(result_line_of(changed("\"serial\"", "\"later\":1,\"serial\""), "x:1"));
}

TEST(ResultLine, HoldsEachNumberToBothEnds) {
    const struct {
        const char *before, *number;
        int64_t lowest, highest;
    } numbers[] = {{"\"frame\":{\"width\":", "640", 2, 65534},
                   {"\"width\":640,\"height\":", "482", 2, 65534},
                   {"\"bits\":", "12", 8, 16},
                   {"[64,65,66,", "67", 0, 65535},
                   {"\"algorithm\":", "4", 0, 4},
                   {"\"step\":", "32", 1, 255},
                   {"\"step\":32,\"width\":", "3", 1, 65534},
                   {"\"width\":3,\"height\":", "2", 1, 65534},
                   {"\"filter_radius\":", "7", 0, 65535},
                   {"\"shading_percent\":", "90", 0, 65535},
                   {"\"otp_bytes\":", "2475", 0, 2147483647}};
    for (const auto& n : numbers)
        for (const int64_t value : {n.lowest - 1, n.lowest, n.highest, n.highest + 1}) {
            const std::string fault = " is not a whole number from " + std::to_string(n.lowest) + " to "
                                      + std::to_string(n.highest);
            std::string told;
            try {
                result_line_of(changed(n.before + std::string(n.number), n.before + std::to_string(value)),
                               "x:1");
            } catch (const Failure& failure) {
                told = failure.what();
            }
            EXPECT_EQ(told.ends_with(fault), value < n.lowest || value > n.highest)
                << n.before << value << told;
        }
}

// However the same line is written, it says the same.
TEST(ResultLine, GainsAreReadWhereverTheyStand) {
    const ResultLine read = result_line_of(full_text, "x:1");
    const std::pair<const char*, const char*> ways[] = {
        {"\"gains\":{\"R\":", "\"gains\": {\"R\":"},  // with a space
        {"AAQBBP8EAAUAAP//", "AAQBBP8EAAUAAP\\/\\/"}, // escaped
        {"\"serial\"",
         "\"x\":{\"y\":1,\"gains\":{\"R\":\"\",\"Gr\":\"\",\"Gb\":\"\",\"B\":\"\"}},\"serial\""},
        {"\"serial\"", "\"x\":1,\"gains\":{\"R\":\"\",\"Gr\":\"\",\"Gb\":\"\",\"B\":\"\"},\"serial\""}};
    for (const auto& [from, to] : ways)
        EXPECT_EQ(result_line_of(changed(from, to), "x:1").gains, read.gains) << to;
    // Those of another object are nobody's.
    std::string deeper(full_text);
    deeper.insert(deeper.rfind(",\"gains\":"), ",\"gains\":null,\"x\":{\"y\":1");
    deeper.insert(deeper.rfind(",\"tool\""), "}");
    EXPECT_EQ(result_line_of(deeper, "x:1").gains, std::nullopt);
}

} // namespace
} // namespace zerklsc::tool
