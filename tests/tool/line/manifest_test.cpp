// Manifests of both forms, their faults, and the shares by serial.
#include "line/manifest.h"

#include <gtest/gtest.h>

#include "failure.h"
#include "support/memory_file.h"

namespace zerklsc::tool {
namespace {

using Modules = std::vector<std::string>;

// "serial|file;file|preset|illuminant" of each module, or "line:serial" of a bad one.
Modules modules_of(const std::string& text) {
    const fuzz::MemoryFile file(text);
    Manifest manifest(file.path());
    Modules list;
    while (const auto module = manifest.next()) {
        std::string files;
        for (const std::string& name : module->files)
            files += (files.empty() ? "" : ";") + name;
        list.push_back(module->fault.empty()
                           ? module->serial + "|" + files + "|" + module->preset.value_or("-") + "|"
                                 + module->illuminant.value_or("-")
                           : std::to_string(module->line) + ":" + module->serial);
    }
    return list;
}

TEST(Manifest, OfBothFormsIsRead) {
    EXPECT_EQ(modules_of("\xEF\xBB\xBF"
                         "files,serial,illuminant,preset\r\n"
                         "\"a, \"\"1\"\".raw;b.raw\",A1,D65,\r\n\r\nc.raw,A2,,p.toml"),
              (Modules{"A1|a, \"1\".raw;b.raw|-|D65", "A2|c.raw|p.toml|-"}));
    EXPECT_EQ(modules_of("serial,files\nA1,\"a.raw\"\n"), Modules{"A1|a.raw|-|-"});
    EXPECT_EQ(
        modules_of("{\"serial\":\"A1\",\"files\":[\"a;.raw\",\"b.raw\"],\"preset\":null}\n"
                   "\n{\"files\":[\"c.raw\"],\"serial\":\"A2\",\"preset\":\"p\",\"illuminant\":\"A\"}\n"),
        (Modules{"A1|a;.raw;b.raw|-|-", "A2|c.raw|p|A"}));
}

TEST(Manifest, GoesOnBehindABadLine) {
    const std::string long_line(2 * longest_manifest_line, 'x');
    EXPECT_EQ(
        modules_of("serial,files\nA1\nA2,a,b\n\"A3,a\nA4,\"a\"b\nA4,a\"b\nA5,a;\n,a\n.A,a\nA/B,a\nA B,a\n\xFF"
                   "A,a\n"
                   + long_line + "\nA6,ok\n" + std::string(longest_module_serial + 1, 'A') + ",a\n"),
        (Modules{"2:A1", "3:A2", "4:", "5:", "6:", "7:A5",
                 "8:", "9:", "10:", "11:", "12:", "13:", "A6|ok|-|-", "15:"}));
    EXPECT_EQ(modules_of("{\"serial\":\"A1\"}\n{\"serial\":\"A2\",\"files\":\"a\"}\n[]\n"
                         "{\"serial\":7,\"files\":[\"a\"]}\n{\n{\"serial\":\"A3\",\"files\":[\"a\",1]}\n"
                         "{\"serial\":\"A4\",\"files\":[\"a\"],\"pre\":\"p\"}\n"
                         "{\"serial\":\"A5\",\"files\":[\"a\"],\"preset\":7}\n{\"files\":[\"a\"]}\n"
                         "{\"serial\":\"../x\",\"files\":[\"a\"],\"pre\":\"p\"}\n"),
              (Modules{"1:A1", "2:A2", "3:", "4:", "5:", "6:A3", "7:A4", "8:A5", "9:", "10:"}));
}

TEST(Manifest, NeedsItsColumns) {
    for (const char* text :
         {"", "A1,a.raw\n", "serial\nA1\n", "serial,files,serial\n", "serial,files,lens\n"})
        EXPECT_THROW(modules_of(text), Failure) << text;
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
    for (const char* text :
         {"", "2", "0/5", "6/5", "2/", "/5", "2/5 ", "-1/5", "1/99999999999999999999", "1/10000000", "2x5"})
        EXPECT_FALSE(shard_from(text)) << text;
}

} // namespace
} // namespace zerklsc::tool
