#include "zerklsc.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using zerklsc::testing::Guarded;

TEST(LoadTable, ReadsWhatScanfReadsAndRepeatsTheLastValueAfterAFailure) {
    const struct {
        std::string text;
        std::vector<uint16_t> values;
    } cases[] = {{"1 2 3", {1, 2, 3, 3, 3}},
                 {"\t-1\n+7\r\n 065535\v-32768", {65535, 7, 65535, 32768}},
                 {"1 2 3", {1, 2}},
                 {"12x5 6", {12, 12, 12}},
                 {"4 - 5", {4, 4, 5, 5}},
                 {"65536 -65537 99999999999999999999999999999999", {0, 65535, 65535}},
                 {"none", {0, 0}},
                 {"", {0}},
                 {"5", {}}};
    const std::string path = ::testing::TempDir() + "zerklsc_load_table.txt";
    for (const auto& c : cases) {
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        std::fputs(c.text.c_str(), file);
        std::fclose(file);
        Guarded<uint16_t> table(c.values.size());
        EXPECT_EQ(load_table(path.c_str(), table.data(), static_cast<int>(table.size())), 0);
        EXPECT_EQ(table.copy(), c.values) << c.text;
    }
    EXPECT_EQ(load_table(path.c_str(), nullptr, -1), 0);
    std::filesystem::remove(path);
}

TEST(LoadTable, AFileThatCannotBeOpenedLeavesTheTable) {
    uint16_t table[2] = {7, 8};
    EXPECT_EQ(load_table("/nonexistent/table.txt", table, 2), 0);
    EXPECT_EQ(table[0], 7);
    EXPECT_EQ(table[1], 8);
}

} // namespace
