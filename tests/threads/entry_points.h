// Every exported function with input of one thread's own.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "zerklsc.h"
#include "zerklsc_driver.h"

namespace zerklsc::testing {

// Buffers for one call of any function, filled anew from a seed, and a digest of what the calls wrote.
struct Workbench {
    static constexpr int32_t width = 132, height = 104, step = 8, radius = 3;
    static constexpr int32_t plane_w = width / 2, plane_h = height / 2;
    static constexpr int32_t grid_w = 10, grid_h = 8, table_w = grid_w + 2, table_h = grid_h + 2;

    std::vector<uint16_t> frame, other;
    std::vector<uint16_t> plane[4];
    uint16_t* planes[4];
    std::vector<uint16_t> table[4];
    uint16_t* tables[4];
    std::vector<float> floats, more_floats;
    std::vector<int16_t> words[4];
    std::vector<uint8_t> stream;
    lsc2d_info info{};
    isp_param_tag isp{};
    lsc2d_calib_param param{};
    imfilter_t filter{ZERKLSC_FILTER_BOX, radius, ZERKLSC_BOUNDARY_MIRROR, nullptr};
    uint64_t digest = 0xCBF29CE484222325u;

    explicit Workbench(uint64_t seed);
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // FNV-1a (Fowler, Noll, Vo), the low byte of a number first on every processor.
    template <class Number>
    requires std::is_arithmetic_v<Number>
    void note(Number value) {
        std::array<uint8_t, sizeof value> bytes = std::bit_cast<std::array<uint8_t, sizeof value>>(value);
        if constexpr (std::endian::native == std::endian::big)
            std::reverse(bytes.begin(), bytes.end());
        for (const uint8_t byte : bytes)
            digest = (digest ^ byte) * 0x100000001B3u;
    }

    void note(zerklsc_status status) { note(static_cast<int32_t>(status)); }

    template <class Number>
    void note(const std::vector<Number>& values) {
        for (const Number value : values)
            note(value);
    }

    // A record that has no fields but those of one type.
    template <class Number, class Record>
    void note_fields(const Record& record) {
        for (const Number value : std::bit_cast<std::array<Number, sizeof record / sizeof(Number)>>(record))
            note(value);
    }

    void note_tables();
};

struct EntryPoint {
    const char* symbol;
    void (*call)(Workbench&);
};

std::span<const EntryPoint> entry_points();

} // namespace zerklsc::testing
