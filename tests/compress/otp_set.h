// Four tables and their stream, each between guard pages, with the record that names them.
#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "support/allocations.h"
#include "support/guarded.h"
#include "support/random.h"
#include "zerklsc.h"

namespace zerklsc::testing {

struct OtpSet {
    std::vector<std::unique_ptr<Guarded<uint16_t>>> tables;
    Guarded<uint8_t> stream;
    lsc_otp_info info;

    // Of width x height inner nodes. The stream has exactly the room that it needs.
    OtpSet(int width, int height, uint8_t pattern, uint8_t mode, Against side = Against::back)
        : stream(static_cast<size_t>(mode == 0   ? 3 * width * height
                                     : mode == 1 ? width * height / 4 * 7
                                                 : 0),
                 side),
          info{pattern, width + 2, height + 2, {}, stream.data(), mode} {
        for (uint16_t*& table : info.lsc_table) {
            tables.push_back(
                std::make_unique<Guarded<uint16_t>>(static_cast<size_t>((width + 2) * (height + 2)), side));
            table = tables.back()->data();
        }
    }

    uint16_t& at(size_t k, int r, int c) { return info.lsc_table[k][r * info.grid_width + c]; }

    void fill(uint16_t gain) {
        for (const auto& table : tables)
            std::fill(table->begin(), table->end(), gain);
    }

    std::vector<uint16_t> gains() const {
        std::vector<uint16_t> all;
        for (const auto& table : tables)
            all.insert(all.end(), table->begin(), table->end());
        return all;
    }

    bool intact() const {
        return stream.intact()
               && std::all_of(tables.begin(), tables.end(), [](auto& t) { return t->intact(); });
    }
};

// What holds for both directions: no node, no memory or no known mode means that no output changes.
inline void expect_refusals_write_nothing(int32_t (*function)(lsc_otp_info*), int width) {
    const int sizes[][2] = {{2, 15}, {19, 2}, {0, 0}, {-5, 9}, {INT32_MIN, INT32_MIN}};
    OtpSet set(width, 3, 0, 0);
    const std::vector<uint16_t> gains = set.gains();
    const std::vector<uint8_t> stream = set.stream.copy();
    const auto untouched = [&] { return set.gains() == gains && set.stream.copy() == stream; };
    for (const auto& s : sizes) {
        set.info.grid_width = s[0];
        set.info.grid_height = s[1];
        EXPECT_EQ(function(&set.info), 0);
        EXPECT_TRUE(untouched()) << s[0] << " x " << s[1];
    }
    set.info.grid_width = width + 2;
    set.info.grid_height = 5;
    bool failed = true;
    for (size_t n = 0; failed; ++n) {
        const AllocationScope scope(n);
        const int32_t status = function(&set.info);
        failed = scope.failed();
        EXPECT_EQ(status, failed ? -1 : 0);
        EXPECT_TRUE(scope.leftovers().empty());
        EXPECT_EQ(untouched(), failed) << n;
    }
}

} // namespace zerklsc::testing
