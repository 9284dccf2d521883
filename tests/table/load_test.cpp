#include "zerklsc.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "support/guarded.h"

namespace {

using namespace zerklsc::testing;

TEST(LoadTable, ReadsWhatScanfReadsAndRepeatsTheLastValueAfterAFailure) {
    const struct {
        const char* text;
        std::vector<uint16_t> values;
    } cases[] = {{"1 2 3", {1, 2, 3, 3, 3}},
                 {"\t-1\n+7\r\n 065535\v-32768", {65535, 7, 65535, 32768}},
                 {"12x5 6", {12, 12, 12}},
                 {"4 - 5", {4, 4, 5, 5}},
                 {"65536 -65537 99999999999999999999999999999999", {0, 65535, 65535}},
                 {"none", {0, 0}},
                 {"5", {}}};
    std::string path = ::testing::TempDir() + "zerklsc_load_table_XXXXXX";
    const int descriptor = mkstemp(path.data());
    ASSERT_NE(descriptor, -1);
    close(descriptor);
    for (const auto& c : cases) {
        std::ofstream(path) << c.text;
        Guarded<uint16_t> table(c.values.size());
        EXPECT_EQ(load_table(path.c_str(), table.data(), static_cast<int>(table.size())), 0);
        EXPECT_EQ(table.copy(), c.values) << c.text;
    }
    EXPECT_EQ(open(path.c_str(), O_RDONLY), descriptor) << "a file stays open";
    close(descriptor);
    std::filesystem::remove(path);
    uint16_t kept = 7;
    EXPECT_EQ(load_table(path.c_str(), &kept, 1), 0);
    EXPECT_EQ(load_table("/dev/null", nullptr, -1), 0);
    EXPECT_EQ(kept, 7);
}

} // namespace
