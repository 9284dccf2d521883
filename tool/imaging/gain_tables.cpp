// GainTables, algorithm_name
#include "imaging/gain_tables.h"

#include <algorithm>

#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// By number: ZERKLSC_ALGORITHM_HALVANE and the following.
constexpr std::array<const char*, 5> names{"halvane", "orvel-otp", "orvel", "beta", "orvel-weights"};

} // namespace

void GainTables::set_table_size() {
    lsc2d_table_size(plane_width(), plane_height(), step, step, &table_width, &table_height);
}

void GainTables::resize() {
    set_table_size();
    for (auto& table : gains)
        table.assign(table_size(), 0);
}

std::array<uint16_t*, 4> GainTables::pointers() {
    return {gains[0].data(), gains[1].data(), gains[2].data(), gains[3].data()};
}

double GainTables::largest_gain(int plane) const {
    int largest = 0;
    for (int j = 1; j + 1 < table_height; ++j)
        for (int i = 1; i + 1 < table_width; ++i)
            largest = std::max(
                largest, int{gains[static_cast<size_t>(plane)][static_cast<size_t>(j * table_width + i)]});
    return largest / double{ZERKLSC_UNITY_GAIN};
}

const char* algorithm_name(int algorithm) {
    return names[static_cast<size_t>(algorithm)];
}

} // namespace zerklsc::tool
