// How the noise of a plane grows with its brightness: the photon transfer curve of a single capture.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "check/tiles.h"

namespace zerklsc::tool {

// Levels are samples, black level included; variances are squares of samples.
struct NoisePoint {
    double level;
    double variance;
};

// A curve of fewer does not tell how the noise grows.
constexpr size_t fewest_noise_points = 8;

// The median variance of the tiles in classes of equal count, from dark to bright: photon transfer (J. R.
// Janesick, "Photon Transfer", SPIE Press, 2007) over the fall-off of one flat field instead of over many
// exposures. Defective pixels spoil few tiles, and a median does not see those.
std::vector<NoisePoint> photon_transfer(const PlaneTiles& tiles, int tile_side);

// The same of the noise that two captures do not share: fixed-pattern noise, which is the same in both,
// cancels in their difference, as EMVA standard 1288 measures it.
std::vector<NoisePoint> photon_transfer(const PlaneTiles& first, const PlaneTiles& difference, int tile_side);

// The variance at a level, between the points of the curve.
double variance_at(const std::vector<NoisePoint>& curve, double level);

// The deviation of a sample by its level, in classes of level, for loops over many tiles.
class DeviationTable {
  public:
    DeviationTable(const std::vector<NoisePoint>& curve, double full_scale);
    float at(float level) const {
        const float place = level * scale_;
        const int index = !(place > 0) ? 0 : place < classes ? static_cast<int>(place) : classes;
        return table_[static_cast<size_t>(index)];
    }

  private:
    static constexpr int classes = 256;
    float scale_;
    std::array<float, classes + 1> table_{};
};

// variance = gain * (level - black) + response^2 * (level - black)^2 with the read noise left out.
struct NoiseLine {
    double gain = 0;        // samples per electron
    double black = 0;       // the level at which the variance ends
    double black_error = 0; // standard error of that
    double misfit = 0;      // of the points from the line, as a fraction
};

// The straight line; nothing where the points do not rise or span too little of the brightness.
std::optional<NoiseLine> fit_noise_line(const std::vector<NoisePoint>& curve);

// What the points leave when black is held at a level: variance = floor + gain x + response^2 x^2, x being
// the light above `black`, none of the three negative.
struct NoiseParabola {
    double floor = 0, gain = 0, response = 0;
    double misfit = 0;
};
NoiseParabola fit_noise_parabola(const std::vector<NoisePoint>& curve, double black);

// Whether a simpler curve explains the points as well as another one, by their misfits: one more term makes
// that smaller by chance, the more so the fewer points there are.
bool fits_as_well(double simple, double other, size_t points);

// What the pixels' unequal response, or a pattern, adds to the noise, as a fraction of the light: the root of
// the parabola's last term where the points cannot do without it.
double response_of(const std::vector<NoisePoint>& curve, double black);

} // namespace zerklsc::tool
