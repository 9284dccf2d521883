#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

// The surface is quadratic in either direction, so that its own continuation modulo 65536 is the border.
TEST(Border, ContinuesAQuadraticSurfaceAndWrapsBeyondTheRange) {
    Random random(1);
    for (uint32_t w = 1; w < 12; ++w)
        for (uint32_t h = 1; h < 12; ++h) {
            const uint64_t p[6] = {random.next(), random.next(), random.next(),
                                   random.next(), random.next(), random.next()};
            Guarded<uint16_t> table((w + 2) * (h + 2), h % 2 ? Against::front : Against::back);
            std::vector<uint16_t> expected(table.size());
            for (uint32_t i = 0; i < table.size(); ++i) {
                const uint32_t r = i / (w + 2), c = i % (w + 2);
                const bool border = r == 0 || r == h + 1 || c == 0 || c == w + 1;
                expected[i] =
                    static_cast<uint16_t>((p[0] + r * (p[1] + r * p[2])) * (p[3] + c * (p[4] + c * p[5])));
                table[i] = border ? uint16_t{7} : expected[i];
                if (border && (w < 3 || h < 3))
                    expected[i] = 7; // there are no three nodes to continue
            }
            expand_lsc_table_c2(table.data(), static_cast<int>(w), static_cast<int>(h));
            ASSERT_EQ(table.copy(), expected) << w << " x " << h;
            ASSERT_TRUE(table.intact());
        }
    Guarded<uint16_t> empty(0);
    for (const int size : {0, -1, INT32_MIN})
        expand_lsc_table_c2(empty.data(), size, size);
}

} // namespace
