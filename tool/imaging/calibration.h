// Gain tables from a flat field.
#pragma once

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

struct CalibrationSettings {
    int algorithm = 2; // ZERKLSC_ALGORITHM_ORVEL
    int step = 0;      // 0: the usual one
    int radius = 8;
    int shading_percent = 100;
    int max_memory = 1024; // MiB that the surface fit of algorithm 3 may take
};

// The node spacing that suits a frame: of the steps that tvessa2 interpolates smoothly, the powers of two up
// to 64, the one nearest to a sixty-fourth of the width, or the next one where that ISP takes only that.
int usual_step(int frame_width, int frame_height);

// The surface fit of algorithm 3 solves a dense system of one equation per node, in two square matrices of
// doubles, in a time that grows with the cube of their side.
struct FitCost {
    double mebibytes;
    double seconds; // about
};
FitCost fit_cost(double nodes);

// Runs the algorithm on a frame whose black level `black` has been taken off. Algorithms 0 and 1 take 10-bit
// samples: they see a deeper frame scaled to 10 bits. Throws a data failure when the frame and the settings
// do not go together.
GainTables calibrate(const RawFrame& flat, BayerPattern pattern, const BlackLevel& black,
                     const CalibrationSettings& settings);

} // namespace zerklsc::tool
