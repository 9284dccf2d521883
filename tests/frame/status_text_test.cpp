#include <set>
#include <string>

#include <gtest/gtest.h>

#include "zerklsc_driver.h"

namespace {

TEST(Version, IsThatOfTheBuild) {
    EXPECT_EQ(zerklsc_version(), EXPECTED_MAJOR * 10000 + EXPECTED_MINOR * 100 + EXPECTED_PATCH);
}

TEST(StatusText, EachStatusHasALineOfItsOwnAndOthersHaveOneToo) {
    std::set<std::string> lines;
    int known = 0;
    for (int status = 0; status < 64; ++status) {
        const std::string text = zerklsc_status_text(static_cast<zerklsc_status>(status));
        EXPECT_FALSE(text.empty() || text.back() == '.' || text.find('\n') != std::string::npos) << status;
        known += text != zerklsc_status_text(static_cast<zerklsc_status>(63)) ? 1 : 0;
        lines.insert(text);
    }
    EXPECT_EQ(known, 17 + 5);
    EXPECT_EQ(lines.size(), 17u + 5u + 1u);
    EXPECT_FALSE(ZERKLSC_REFUSED(ZERKLSC_OK));
    EXPECT_TRUE(ZERKLSC_REFUSED(ZERKLSC_NULL_POINTER) && ZERKLSC_REFUSED(ZERKLSC_NO_SOLUTION));
    EXPECT_FALSE(ZERKLSC_REFUSED(ZERKLSC_STEP_NOT_SMOOTH) || ZERKLSC_REFUSED(ZERKLSC_FIT_ROUNDS));
}

} // namespace
