// A calibration with its record and four gain tables against guard pages.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <vector>

#include "support/guarded.h"
#include "zerklsc_driver.h"

namespace zerklsc::testing {

struct Tables {
    static constexpr uint16_t untouched = 4711;
    Guarded<uint16_t> table[4];
    uint16_t* list[4];

    explicit Tables(int32_t table_w, int32_t table_h, Against side = Against::back)
        : table{Guarded<uint16_t>(size(table_w, table_h), side),
                Guarded<uint16_t>(size(table_w, table_h), side),
                Guarded<uint16_t>(size(table_w, table_h), side),
                Guarded<uint16_t>(size(table_w, table_h), side)},
          list{table[0].data(), table[1].data(), table[2].data(), table[3].data()} {
        for (Guarded<uint16_t>& t : table)
            std::fill(t.begin(), t.end(), untouched);
    }

    bool all(uint16_t low, uint16_t high) {
        return std::all_of(std::begin(table), std::end(table), [&](Guarded<uint16_t>& t) {
            return std::all_of(t.begin(), t.end(), [&](uint16_t g) { return low <= g && g <= high; });
        });
    }

    bool all_untouched() { return all(untouched, untouched); }

    std::vector<std::vector<uint16_t>> copy() const {
        return {table[0].copy(), table[1].copy(), table[2].copy(), table[3].copy()};
    }

    bool intact() const {
        return std::all_of(std::begin(table), std::end(table), [](const auto& t) { return t.intact(); });
    }

  private:
    static size_t size(int32_t w, int32_t h) { return static_cast<size_t>(w) * static_cast<size_t>(h); }
};

struct Case {
    int32_t algorithm;
    int width, height, grid; // of the frame
    int32_t radius;
};

inline std::ostream& operator<<(std::ostream& to, const Case& g) {
    return to << "algorithm " << g.algorithm << ", " << g.width << "x" << g.height << ", grid " << g.grid
              << ", radius " << g.radius;
}

// A record whose tables and weights start out recognisable.
struct Call {
    int32_t table_w = 3, table_h = 3;
    lsc2d_info info{};
    std::unique_ptr<Tables> tables;

    explicit Call(const Case& g, int32_t percent = 90) {
        if (g.grid > 0)
            lsc2d_table_size(g.width / 2, g.height / 2, g.grid, g.grid, &table_w, &table_h);
        tables = std::make_unique<Tables>(table_w, table_h);
        std::memset(&info, 0x5B, sizeof info);
        info.width = static_cast<uint16_t>(g.width);
        info.height = static_cast<uint16_t>(g.height);
        std::copy_n(tables->list, 4, info.lsc_table);
        info.grid = static_cast<uint16_t>(g.grid);
        info.shading_percent = percent;
        info.filter_radius = g.radius;
        info.algorithm = g.algorithm;
    }

    bool same_weights(const Call& other) const {
        return std::memcmp(&info.weight, &other.info.weight, sizeof info.weight) == 0;
    }

    bool same_as(const Call& other) const {
        return tables->copy() == other.tables->copy() && same_weights(other);
    }
};

} // namespace zerklsc::testing
