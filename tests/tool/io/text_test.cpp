// JSON, YAML, base64 and lists of numbers: what is written, and the bounds of what is read.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "failure.h"
#include "io/base64.h"
#include "io/black_level_text.h"
#include "io/json_text.h"
#include "io/json_value.h"
#ifdef ZERKLSC_WITH_YAML
#include "io/yaml_document.h"
#endif

namespace zerklsc::tool {
namespace {

std::string times(size_t count, const std::string& text) {
    std::string all;
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(JsonText, IsBoundedToTheLastBracketAndNumber) {
    constexpr size_t commas = 1 << 16, marks = 1 << 18, numbers = 1 << 25;
    const std::string row = times(commas - 1, ","), level = "[";
    const std::pair<std::string, std::string> good_and_bad[] = {
        {times(16, level), times(17, level)},
        {times(20, "[]{}") + times(16, "{"), times(20, "[]{}") + times(17, "{")},
        {times(commas, ","), times(commas + 1, ",")},
        {"[" + times(commas, ","), "[" + times(commas + 1, ",")},
        {",,[],:" + times(commas, ","), ",,[]" + times(commas + 1, ",")},
        {times(commas, ",") + "{}" + times(commas, ","), "{}" + times(commas + 1, ",")},
        {times(marks / 2, "[]") + times(marks / 2, "{}"),
         times(marks / 2, "[]") + times(marks / 2 + 1, "{}")},
        {times(marks, ":"), times(marks + 1, ":")},
        {times(numbers / commas, row + ",[]"), times(numbers / commas, row + ",[]") + ","},
        {R"("[[[[[[[[[[[[[[[[[" "\"[[[[[[[[[[[[[[[[[" "\\" [[[[[[[[[[[[[[[[)",
         R"("" "[\\" [[[[[[[[[[[[[[[[[)"},
    };
    for (const auto& [good, bad] : good_and_bad) {
        EXPECT_STREQ(why_discarded(good), "is not valid JSON") << good.substr(0, 20);
        EXPECT_STREQ(why_discarded(bad), "is nested deeper or holds more than any table needs")
            << bad.substr(0, 20);
        EXPECT_TRUE(parse_json(bad).is_discarded());
    }
    EXPECT_EQ(parse_json("[7,{\"a\":[8]}]")[1]["a"][0], 8);
    EXPECT_EQ(shown(nlohmann::json(std::string(38, 'a'))), '"' + std::string(38, 'a') + '"');
    EXPECT_EQ(shown(nlohmann::json(std::string(39, 'a'))), '"' + std::string(39, 'a') + "...");
}

TEST(JsonValue, KnowsEachBoundOfUtf8) {
    for (const char* text :
         {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xE1\x80\x80", "\xEC\xBF\xBF", "\xED\x80\x80",
          "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF0\xBF\xBF\xBF",
          "\xF1\x80\x80\x80", "\xF3\xBF\xBF\xBF", "\xF4\x80\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(is_utf8(text) && is_utf8("a" + std::string(text) + "z")) << text;
    for (const char* text : {"\x80",
                             "\xBF",
                             "\xC0\x80",
                             "\xC1\xBF",
                             "\xC2",
                             "\xC2\x7F",
                             "\xC2\xC0",
                             "\xE0\x9F\xBF",
                             "\xE0\xC0\x80",
                             "\xE1\x7F\x80",
                             "\xE1\xC0\x80",
                             "\xE1\x80",
                             "\xE1\x80\x7F",
                             "\xE1\x80\xC0",
                             "\xED\xA0\x80",
                             "\xF0\x8F\xBF\xBF",
                             "\xF1\x80\x80",
                             "\xF1\x80\xC0\x80",
                             "\xF1\x80\x80\x7F",
                             "\xF4\x90\x80\x80",
                             "\xF5\x80\x80\x80",
                             "\xFF"})
        EXPECT_FALSE(is_utf8(text) || is_utf8("a" + std::string(text) + "z")) << text;
    EXPECT_EQ(JsonValue("\x1F \x7F~\"\\/\n\xC3\xBC\xFF\xFE").line(),
              "\"\\u001f \\u007f~\\\"\\\\/\\u000a\xC3\xBC\\ufffd\\ufffd\"");
}

// The first ones are those of RFC 4648.
TEST(Base64, IsThatOfTheStandardAlone) {
    const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"},
                                                         {"\xFB\xFF\xFE", "+//+"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(base64_of(bytes), text);
        EXPECT_EQ(bytes_of_base64(text), bytes);
    }
    for (const char* text :
         {"Z", "Zg", "Zg=", "Zh==", "Zm9=", "Z===", "====", "Zg==Zg==", "Zm 9", "Zm9-", "=Zm9"})
        EXPECT_FALSE(bytes_of_base64(text)) << text;
}

TEST(BlackLevelText, IsOneLevelOrFour) {
    EXPECT_EQ(black_level_from("0"), (BlackLevel{0, 0, 0, 0}));
    EXPECT_EQ(black_level_from("65535"), (BlackLevel{65535, 65535, 65535, 65535}));
    EXPECT_EQ(black_level_from("64,0,65535,7"), (BlackLevel{64, 0, 65535, 7}));
    for (const char* text :
         {"", "-1", "65536", "1,2", "1,2,3", "1,2,3,4,5", "1,2,3,", ",1,2,3", "1;2;3;4", " 1", "1 "})
        EXPECT_FALSE(black_level_from(text)) << text;
}

#ifdef ZERKLSC_WITH_YAML
TEST(YamlDocument, IsAHundredLevelsDeepAtMost) {
    const auto fault_of = [](const std::string& text) {
        try {
            const YamlDocument document(text, "y");
        } catch (const Failure& failure) {
            return std::string(failure.what());
        }
        return std::string();
    };
    EXPECT_EQ(fault_of(times(100, "[") + times(100, "]")), "");
    EXPECT_EQ(fault_of(times(50, "[{a: ") + times(50, "}]")), "");
    EXPECT_EQ(fault_of("[" + times(200, "{a: [1]}, ") + "1]"), "");
    for (const std::string& text :
         {times(101, "[") + times(101, "]"), "[" + times(50, "[{a: ") + times(50, "}]") + "]"})
        EXPECT_TRUE(fault_of(text).starts_with("y: its lists and mappings are more than 100 levels deep"));
    EXPECT_TRUE(fault_of("a: 1\nc: 2\n\tb: 3\n").starts_with("y: is not valid YAML: line 3: "));
}
#endif

} // namespace
} // namespace zerklsc::tool
