// Both corrections once more, from the definition of a single pixel: no strip, no refills, no shared rows.
#pragma once

#include <vector>

#include "bicubic/correction/reference.h"
#include "support/random.h"
#include "zerklsc.h"

namespace zerklsc::testing {

// A frame of one of the two ISPs with its tables in the order of the record's pointers.
struct CorrectionModel {
    CorrectionModel(bool vessal2_, size_t width_, size_t height_, size_t step_, Random& random)
        : vessal2(vessal2_), width(width_), height(height_), step(step_), table_w(extent(width / 2)) {
        const Spread spread = Spread(random.between(0, 2));
        const auto shift = random.between(0, 2);
        in = random_samples(random, width * height, spread);
        limit_samples(random);
        for (auto& table : tables)
            for (uint16_t gain : random_samples(random, table_w * extent(height / 2), spread))
                table.push_back(static_cast<uint16_t>(gain >> shift));
    }

    std::vector<uint16_t> corrected() const {
        std::vector<uint16_t> out;
        for (const uint16_t sample : in) {
            const uint64_t v = (sample * uint64_t{gain(out.size() % width, out.size() / width)} + 512) / 1024;
            out.push_back(static_cast<uint16_t>(std::min<uint64_t>(v % 65536, 1023)));
        }
        return out;
    }

    bool vessal2;
    size_t width, height, step, table_w;
    std::vector<uint16_t> in, tables[4];

  private:
    // Leaves them 10 bits in two models of three, but for one sample in one of the two.
    void limit_samples(Random& random) {
        const auto kind = random.between(0, 2);
        if (kind == 0 || in.empty())
            return;
        for (uint16_t& sample : in)
            sample &= 1023;
        if (kind == 1)
            in[static_cast<size_t>(random.between(0, static_cast<int64_t>(in.size()) - 1))] |= 1024;
    }

    size_t extent(size_t half) const {
        if (vessal2)
            return (half + step - 1) / step + 3;
        return half == 0 ? (step == 1 ? 2 : 4) : (half - 1 + step - 1) / step + 3;
    }

    uint16_t gain(size_t x, size_t y) const {
        const bool last = width / 2 % step == 1 && x / 2 == width / 2 - 1;
        std::array<int64_t, 4> across;
        for (size_t k = 0; k < 4; ++k)
            across[k] = column(x / 2 / step + k, x % 2, y);
        return interpolated(across, last ? 1 : x / 2 % step);
    }

    // The vertical pass. Only columns that enter the strip by a refill see the quirk of the last row.
    int64_t column(size_t i, size_t side, size_t y) const {
        const bool last = i >= 4 && height / 2 % step == 1 && y / 2 == height / 2 - 1;
        const auto& table = tables[y % 2 + 2 * side];
        std::array<int64_t, 4> down;
        for (size_t k = 0; k < 4; ++k) {
            const size_t row = y / 2 / step + k, index = row * table_w + i;
            down[k] = table[last && index < table_w ? 0 : std::min(index - last * table_w, table.size() - 1)];
        }
        return interpolated(down, last ? 1 : y / 2 % step);
    }

    uint16_t interpolated(const std::array<int64_t, 4>& p, size_t phase) const {
        const size_t cell = vessal2 ? step : 64;
        return reference_cubic(p, static_cast<int64_t>(cell),
                               static_cast<int64_t>(phase * (vessal2 ? 1 : 64 / step)));
    }
};

} // namespace zerklsc::testing
