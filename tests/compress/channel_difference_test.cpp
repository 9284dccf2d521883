#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace {

using namespace zerklsc::testing;

// The transform by its definition, each node from the unchanged plane.
std::vector<int16_t> differences(const std::vector<int16_t>& plane, int w, int h, int unity) {
    // How far the neighbour one step nearer the centre is: +1, -1 or, for a centre index, 0.
    const auto inwards = [](int i, int size) { return i < (size - 1) / 2 ? 1 : i > size / 2 ? -1 : 0; };
    std::vector<int16_t> result;
    for (int i = 0; i < w * h; ++i) {
        const int right = inwards(i % w, w), down = inwards(i / w, h) * w;
        const auto x = [&](int n) { return static_cast<int>(plane[static_cast<size_t>(n)]); };
        const auto across = [&](int n) { return right != 0 ? x(n) - x(n + right) : x(n); };
        const int along = down != 0 ? across(i) - across(i + down) : across(i);
        result.push_back(static_cast<int16_t>(right == 0 && down == 0 ? along - unity : along));
    }
    return result;
}

// Calls check(plane, w, h, type, mode, unity) for planes of any values, which wrap.
void for_each_plane(const auto& check) {
    Random random(2);
    for (int i = 0; i < 20 * 10 * 8; ++i) {
        const int w = i / 8 % 20, h = i / 160, type = i % 8 / 4;
        const uint8_t modes[4] = {0, 1, 2, 255};
        Guarded<int16_t> plane(static_cast<size_t>(w * h), i % 3 ? Against::back : Against::front);
        for (int16_t& v : plane)
            v = static_cast<int16_t>(random.next());
        check(plane, w, h, type, modes[i % 4], type == 0 ? 0 : i % 4 == 1 ? 16 : 64);
        ASSERT_TRUE(plane.intact());
    }
}

TEST(ChannelDifference, IsThatOfTheUnchangedPlane) {
    for_each_plane([](auto& plane, int w, int h, int type, uint8_t mode, int unity) {
        const std::vector<int16_t> original = plane.copy();
        EXPECT_EQ(intra_cnl_diff(plane.data(), w, h, type, mode), 0);
        ASSERT_EQ(plane.copy(), differences(original, w, h, unity)) << w << " x " << h;
        EXPECT_EQ(intra_cnl_diff(plane.data(), -w, INT32_MIN, type, mode), 0);
    });
}

TEST(ChannelDifference, ComesBackExactlyButForOddWidthEvenHeightLowerInTheLowerHalf) {
    for_each_plane([](auto& plane, int w, int h, int type, uint8_t mode, int unity) {
        std::vector<int16_t> expected = plane.copy();
        if (w % 2 == 1 && h % 2 == 0)
            for (size_t i = expected.size() / 2; i < expected.size(); ++i)
                expected[i] = static_cast<int16_t>(expected[i] - 2 * unity);
        intra_cnl_diff(plane.data(), w, h, type, mode);
        EXPECT_EQ(deintra_cnl_diff(plane.data(), w, h, type, mode), 0);
        ASSERT_EQ(plane.copy(), expected) << w << " x " << h;
        EXPECT_EQ(deintra_cnl_diff(plane.data(), INT32_MIN, -h, type, mode), 0);
    });
}

} // namespace
