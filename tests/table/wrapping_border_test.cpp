#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

// The surface is quadratic in either direction, so that its own continuation modulo 65536 is the border.
TEST(Border, ContinuesAQuadraticSurfaceAndWrapsBeyondTheRange) {
    Random random(1);
    for (int i = 0; i < 144; ++i) {
        const int w = i % 12, h = i / 12;
        const bool enough = w > 2 && h > 2; // nodes to continue
        uint64_t p[6];
        for (uint64_t& coefficient : p)
            coefficient = random.next();
        std::vector<uint16_t> inner, expected;
        for (uint64_t y = 0; y < static_cast<uint64_t>(h) + 2; ++y)
            for (uint64_t x = 0; x < static_cast<uint64_t>(w) + 2; ++x) {
                const uint64_t value = (p[0] + x * (p[1] + x * p[2])) * (p[3] + y * (p[4] + y * p[5]));
                const bool border =
                    x % static_cast<uint64_t>(w + 1) == 0 || y % static_cast<uint64_t>(h + 1) == 0;
                inner.push_back(border ? uint16_t{7} : static_cast<uint16_t>(value));
                expected.push_back(enough ? static_cast<uint16_t>(value) : inner.back());
            }
        Guarded<uint16_t> table(inner, i % 2 ? Against::front : Against::back);
        expand_lsc_table_c2(table.data(), w, h);
        ASSERT_EQ(table.copy(), expected) << w << " x " << h;
        expand_lsc_table_c2(table.data(), -w, INT32_MIN);
        expand_lsc_table_c2(table.data(), INT32_MAX, 3);
        expand_lsc_table_c2(table.data(), 3, INT32_MAX - 1);
        ASSERT_TRUE(table.intact());
    }
}

} // namespace
