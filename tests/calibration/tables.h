// A set of four gain tables against guard pages.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support/guarded.h"

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

    bool intact() const {
        return std::all_of(std::begin(table), std::end(table), [](const auto& t) { return t.intact(); });
    }

  private:
    static size_t size(int32_t w, int32_t h) { return static_cast<size_t>(w) * static_cast<size_t>(h); }
};

} // namespace zerklsc::testing
