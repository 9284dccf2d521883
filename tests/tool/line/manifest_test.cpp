// Manifests of both forms, their faults, and the shares by serial.
#include "line/manifest.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include <gtest/gtest.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

class ManifestFile : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/zerklsc-test-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder_ = name;
        path_ = folder_ + "/lot";
    }
    void TearDown() override {
        std::remove(path_.c_str());
        std::remove(folder_.c_str());
    }
    void write(const std::string& text) { std::ofstream(path_, std::ios::binary) << text; }

    // "serial|file;file|preset|illuminant" of each module, or "line: fault".
    std::vector<std::string> modules() {
        Manifest manifest(path_);
        std::vector<std::string> list;
        while (const auto module = manifest.next()) {
            std::string files;
            for (const std::string& file : module->files)
                files += (files.empty() ? "" : ";") + file;
            list.push_back(module->fault.empty()
                               ? module->serial + "|" + files + "|" + module->preset.value_or("-") + "|"
                                     + module->illuminant.value_or("-")
                               : std::to_string(module->line) + ":" + module->serial);
        }
        return list;
    }

    std::string folder_, path_;
};

using Modules = std::vector<std::string>;

TEST_F(ManifestFile, OfBothFormsIsRead) {
    write("\xEF\xBB\xBF"
          "files,serial,illuminant,preset\r\n"
          "\"a, \"\"1\"\".raw;b.raw\",A1,D65,\r\n\r\nc.raw,A2,,p.toml");
    EXPECT_EQ(modules(), (Modules{"A1|a, \"1\".raw;b.raw|-|D65", "A2|c.raw|p.toml|-"}));
    write("serial,files\nA1,a.raw\n");
    EXPECT_EQ(modules(), Modules{"A1|a.raw|-|-"});
    write("{\"serial\":\"A1\",\"files\":[\"a;.raw\",\"b.raw\"],\"preset\":null}\n"
          "\n{\"files\":[\"c.raw\"],\"serial\":\"A2\",\"preset\":\"p\",\"illuminant\":\"A\"}\n");
    EXPECT_EQ(modules(), (Modules{"A1|a;.raw;b.raw|-|-", "A2|c.raw|p|A"}));
}

TEST_F(ManifestFile, GoesOnBehindABadLine) {
    const std::string long_line(2 * longest_manifest_line, 'x');
    write("serial,files\nA1\nA2,a,b\n\"A3,a\nA4,\"a\"b\nA5,a;\n,a\n.A,a\nA/B,a\nA B,a\n\xFF"
          "A,a\n"
          + long_line + "\nA6,ok\n" + std::string(longest_module_serial + 1, 'A') + ",a\n");
    EXPECT_EQ(modules(), (Modules{"2:A1", "3:A2", "4:", "5:", "6:A5",
                                  "7:", "8:", "9:", "10:", "11:", "12:", "A6|ok|-|-", "14:"}));
    write(
        "{\"serial\":\"A1\"}\n{\"serial\":\"A2\",\"files\":\"a\"}\n[]\n{\"serial\":7,\"files\":[\"a\"]}\n{\n"
        "{\"serial\":\"A3\",\"files\":[\"a\",1]}\n{\"serial\":\"A4\",\"files\":[\"a\"],\"pre\":\"p\"}\n"
        "{\"serial\":\"../x\",\"files\":[\"a\"],\"pre\":\"p\"}\n");
    EXPECT_EQ(modules(), (Modules{"1:A1", "2:A2", "3:", "4:", "5:", "6:A3", "7:A4", "8:"}));
}

TEST_F(ManifestFile, NeedsItsColumns) {
    for (const char* text :
         {"", "A1,a.raw\n", "serial\nA1\n", "serial,files,serial\n", "serial,files,lens\n"}) {
        write(text);
        EXPECT_THROW(Manifest{path_}, Failure) << text;
    }
}

// sha256sum and another program's modulo computed the hashes and the shares.
TEST(Shard, IsChosenByTheSerialAlone) {
    EXPECT_EQ(hash_of_serial("A0001"), 0x2B348918419ECC2DU);
    EXPECT_EQ(hash_of_serial("B-7"), 0xB86533183DA8C8E4U);
    std::string shares;
    for (const char* serial : {"A0001", "A0002", "A0003", "A0004", "A0005", "A0006", "A0007", "B-7"})
        for (uint64_t number = 1; number <= 5; ++number)
            if (Shard{number, 5}.has(serial))
                shares += std::to_string(number);
    EXPECT_EQ(shares, "44123353");
}

TEST(Shard, IsReadFromItsWords) {
    EXPECT_EQ(shard_from("2/5")->number, 2U);
    EXPECT_EQ(shard_from("2/5")->count, 5U);
    for (const char* text : {"", "2", "0/5", "6/5", "2/", "/5", "2/5 ", "-1/5", "1/99999999999999999999"})
        EXPECT_FALSE(shard_from(text)) << text;
}

TEST_F(ManifestFile, NamesRepeatedSerialsInAnyNumberOfPasses) {
    std::string text = "serial,files\n";
    // Line i + 2 has serial i; every seventh repeats the one 5 lines before.
    std::vector<uint64_t> expected;
    for (int i = 0; i < 100; ++i) {
        const bool repeats = i % 7 == 6;
        text += std::to_string(repeats ? i - 5 : i) + ",a\n";
        if (repeats)
            expected.push_back(static_cast<uint64_t>(i) + 2);
    }
    write(text + "bad line\n");
    for (const size_t at_once : {1000U, 50U, 13U, 1U}) {
        const ManifestSurvey survey = survey_manifest(path_, {}, at_once);
        EXPECT_EQ(survey.modules, 100U);
        EXPECT_EQ(survey.repeats, expected) << at_once;
    }
    uint64_t modules = 0;
    std::vector<uint64_t> repeats;
    for (uint64_t number = 1; number <= 3; ++number) {
        const ManifestSurvey survey = survey_manifest(path_, {number, 3});
        modules += survey.modules;
        repeats.insert(repeats.end(), survey.repeats.begin(), survey.repeats.end());
    }
    std::ranges::sort(repeats);
    EXPECT_EQ(modules, 100U);
    EXPECT_EQ(repeats, expected);
}

} // namespace
} // namespace zerklsc::tool
