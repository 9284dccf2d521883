// A flat field with its record and four guarded tables, for the tests of the parameter generators.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "zerklsc.h"

namespace zerklsc::testing {

constexpr uint16_t untouched = 0xBEEF;

// Which record pointer the corrections read a plane through, (x & 1) + 2 * (y & 1).
constexpr size_t pointer_of_plane[4] = {0, 2, 1, 3};

// By Bayer pattern and plane.
constexpr const char* colours[4][4] = {
    {"Gr", "R", "B", "Gb"}, {"R", "Gr", "Gb", "B"}, {"B", "Gb", "Gr", "R"}, {"Gb", "B", "R", "Gr"}};

inline int plane_at(int x, int y) {
    return (x & 1) + 2 * (y & 1);
}

struct FlatField {
    Guarded<uint16_t> raw;
    isp_param_tag param{};
    int grid_w, grid_h;
    std::array<std::unique_ptr<Guarded<uint16_t>>, 4> tables;

    FlatField(int width, int height, int step, int isp_type = 3, Against side = Against::back)
        : raw(static_cast<size_t>(width * height), side), grid_w(nodes(width / 2, step, isp_type)),
          grid_h(nodes(height / 2, step, isp_type)) {
        param.width = static_cast<uint16_t>(width);
        param.height = static_cast<uint16_t>(height);
        param.grid = static_cast<uint16_t>(step);
        param.isp_type = static_cast<uint8_t>(isp_type);
        param.shading_percent = 100;
        const std::vector<uint16_t> blank(static_cast<size_t>((grid_w + 2) * (grid_h + 2)), untouched);
        for (size_t k = 0; k < 4; ++k) {
            tables[k] = std::make_unique<Guarded<uint16_t>>(blank, side);
            param.lsc_table[k] = tables[k]->data();
        }
        paint([](int, int) { return 500; });
    }

    // Type 3 counts from the size, the others from the last sample.
    static int nodes(int size, int step, int isp_type) {
        return (size - (isp_type == 3 ? 0 : 1) + step - 1) / step + 1;
    }

    uint16_t& sample(int x, int y) { return raw[static_cast<size_t>(y * param.width + x)]; }

    template <class Level>
    void paint(Level level) {
        for (int y = 0; y < param.height; ++y)
            for (int x = 0; x < param.width; ++x)
                sample(x, y) = static_cast<uint16_t>(level(x, y));
    }

    // Inner node (i, j) of the table of a plane; -1 and the node count are the border.
    int gain(int plane, int i, int j) {
        return (*tables[pointer_of_plane[plane]])[static_cast<size_t>((j + 1) * (grid_w + 2) + i + 1)];
    }

    bool all_tables_are(uint16_t value) {
        const auto same = [value](uint16_t g) { return g == value; };
        return std::all_of(tables.begin(), tables.end(),
                           [same](const auto& t) { return std::all_of(t->begin(), t->end(), same); });
    }

    // Runs a generator and returns what it printed.
    template <class Generator>
    std::string run(Generator generator, int status = 0) {
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(generator(raw.data(), &param), status);
        for (const auto& t : tables)
            EXPECT_TRUE(t->intact());
        return ::testing::internal::GetCapturedStdout();
    }
};

} // namespace zerklsc::testing
