// Flat-field captures of camera modules that do not exist.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "imaging/faults.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

struct SimulationSettings {
    int width = 4208;
    int height = 3120;
    BayerPattern pattern = BayerPattern::rggb;
    int bits = 10;
    int black = 64;
    uint64_t seed = 1;
    double level = 80;               // of green at the optical centre, percent of the range above black
    std::array<double, 4> corners{}; // corner brightness of R, Gr, Gb, B, percent of the centre
    std::array<double, 2> centre{};  // optical centre, percent of width and height
    double wave = 0;                 // how far the shading waves about the cos^4 law, percent
    std::array<double, 4> colour_levels{62, 100, 100, 70}; // R, Gr, Gb, B, percent of green
    double full_well = 6000;                               // electrons at full scale; 0: no photon noise
    double read_noise = 3;                                 // electrons
    int dust = 0;                                          // soft dark spots
    int defects = 0;                                       // pixels stuck at 0 or at full scale
    double response = 0;                                   // deviation of the pixels' sensitivity, percent
    std::vector<Fault> faults;                             // in the order in which they happen
};

// The same settings give the same samples on every machine: beside integers, only additions, multiplications,
// divisions and square roots in double precision are used, whose results IEEE 754 fixes to the last bit.
RawFrame simulate(const SimulationSettings& settings);

} // namespace zerklsc::tool
