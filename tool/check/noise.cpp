// photon_transfer, fit_noise_line, fit_noise_parabola, response_of
#include "check/noise.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "check/least_squares.h"
#include "check/robust.h"

namespace zerklsc::tool {
namespace {

constexpr size_t classes = 24;
// A tile's variance is the mean of as many squared differences as it has samples, half of them in each
// direction: the median of a chi-square distribution of k degrees of freedom is k (1 - 2 / (9 k))^3 (E. B.
// Wilson, M. M. Hilferty, PNAS 17, 1931).
double median_of_variances(int tile_side) {
    return std::pow(1 - 2.0 / (9 * tile_side * tile_side), 3);
}

struct TileNoise {
    float level, variance;
};

NoisePoint point_of(const TileNoise* begin, const TileNoise* end, int tile_side) {
    std::vector<float> level, variance;
    for (const TileNoise* tile = begin; tile != end; ++tile) {
        level.push_back(tile->level);
        variance.push_back(tile->variance);
    }
    return {median_of(level), median_of(variance) / median_of_variances(tile_side)};
}

// Puts the classes `first` to `last` - 1 of `count`, in order; not the tiles in them.
void order_classes(std::vector<TileNoise>& tiles, size_t count, size_t first, size_t last) {
    if (last - first < 2)
        return;
    const auto begin_of = [&](size_t k) {
        return tiles.begin() + static_cast<std::ptrdiff_t>(tiles.size() * k / count);
    };
    const size_t middle = (first + last) / 2;
    std::nth_element(begin_of(first), begin_of(middle), begin_of(last),
                     [](const TileNoise& a, const TileNoise& b) { return a.level < b.level; });
    order_classes(tiles, count, first, middle);
    order_classes(tiles, count, middle, last);
}

std::vector<NoisePoint> curve_of(std::vector<TileNoise> tiles, int tile_side) {
    const size_t count = std::min(classes, std::max<size_t>(tiles.size() / 16, 1));
    order_classes(tiles, count, 0, count);
    std::vector<NoisePoint> curve;
    for (size_t k = 0; k < count; ++k)
        curve.push_back(point_of(tiles.data() + tiles.size() * k / count,
                                 tiles.data() + tiles.size() * (k + 1) / count, tile_side));
    return curve;
}

double relative_misfit(const std::vector<NoisePoint>& curve, auto&& model) {
    double sum = 0;
    for (const NoisePoint& p : curve) {
        const double off = model(p.level) / std::max(p.variance, 1e-9) - 1;
        sum += off * off;
    }
    return std::sqrt(sum / static_cast<double>(curve.size()));
}

// The variance of a variance is proportional to its square.
double weight_of(const NoisePoint& p) {
    const double v = std::max(p.variance, 1e-6);
    return 1 / (v * v);
}

// Fits the terms that are allowed, the others being 0.
NoiseParabola fit_terms(const std::vector<NoisePoint>& curve, double black, int terms) {
    NormalEquations<3> equations;
    for (const NoisePoint& p : curve) {
        const double x = p.level - black;
        equations.add(
            {(terms & 1) != 0 ? 1.0 : 0.0, (terms & 2) != 0 ? x : 0.0, (terms & 4) != 0 ? x * x : 0.0},
            p.variance, weight_of(p));
    }
    const auto found = equations.solve();
    NoiseParabola parabola{found[0], found[1], found[2], 0};
    parabola.misfit = relative_misfit(curve, [&](double level) {
        const double x = level - black;
        return parabola.floor + x * (parabola.gain + x * parabola.response);
    });
    return parabola;
}

constexpr int terms_of_a_line = 1 | 2, all_terms = 1 | 2 | 4;

// The best of the fits of 1 .. `most` of the bits of fit_terms().
NoiseParabola best_fit(const std::vector<NoisePoint>& curve, double black, int most) {
    NoiseParabola best;
    best.misfit = 1e9;
    for (int terms = 1; terms <= most; ++terms) {
        const NoiseParabola found = fit_terms(curve, black, terms);
        const double smallest = std::min({found.floor, found.gain, found.response});
        if (smallest >= 0 && found.misfit < best.misfit * 0.999)
            best = found;
    }
    return best;
}

} // namespace

std::vector<NoisePoint> photon_transfer(const PlaneTiles& tiles, int tile_side) {
    std::vector<TileNoise> noise(tiles.mean.size());
    for (size_t i = 0; i < noise.size(); ++i)
        noise[i] = {tiles.mean[i], (tiles.variance_h[i] + tiles.variance_v[i]) / 2};
    return curve_of(std::move(noise), tile_side);
}

std::vector<NoisePoint> photon_transfer(const PlaneTiles& first, const PlaneTiles& difference,
                                        int tile_side) {
    std::vector<TileNoise> noise(first.mean.size());
    // A difference has the noise of both captures.
    for (size_t i = 0; i < noise.size(); ++i)
        noise[i] = {first.mean[i], (difference.variance_h[i] + difference.variance_v[i]) / 4};
    return curve_of(std::move(noise), tile_side);
}

double variance_at(const std::vector<NoisePoint>& curve, double level) {
    const auto above = std::ranges::find_if(curve, [&](const NoisePoint& p) { return p.level > level; });
    if (above == curve.begin())
        return curve.front().variance;
    if (above == curve.end())
        return curve.back().variance;
    const NoisePoint& below = *(above - 1);
    const double t = (level - below.level) / std::max(above->level - below.level, 1e-9);
    return below.variance + t * (above->variance - below.variance);
}

DeviationTable::DeviationTable(const std::vector<NoisePoint>& curve, double full_scale)
    : scale_(static_cast<float>(classes / full_scale)) {
    // A sample is a whole number, whose rounding alone has a deviation of about 0.3.
    constexpr double least_variance = 0.1;
    for (size_t k = 0; k < table_.size(); ++k) {
        const double level = (static_cast<double>(k) + 0.5) * full_scale / classes;
        table_[k] = static_cast<float>(std::sqrt(std::max(variance_at(curve, level), least_variance)));
    }
}

std::optional<NoiseLine> fit_noise_line(const std::vector<NoisePoint>& curve) {
    if (curve.size() < fewest_noise_points)
        return {};
    double weights = 0, level = 0, variance = 0;
    for (const NoisePoint& p : curve) {
        const double w = weight_of(p);
        weights += w;
        level += w * p.level;
        variance += w * p.variance;
    }
    level /= weights;
    variance /= weights;
    double xx = 0, xy = 0;
    for (const NoisePoint& p : curve) {
        const double w = weight_of(p);
        xx += w * (p.level - level) * (p.level - level);
        xy += w * (p.level - level) * (p.variance - variance);
    }
    if (!(xx > 0 && xy > 0))
        return {};
    NoiseLine line;
    line.gain = xy / xx;
    line.black = level - variance / line.gain;
    line.misfit = relative_misfit(curve, [&](double at) { return line.gain * (at - line.black); });
    // The error of the quotient variance / gain about the weighted middle of the points.
    const double gain_error = line.misfit / std::sqrt(xx);
    const double variance_error = line.misfit / std::sqrt(weights);
    line.black_error = std::hypot(variance_error, (level - line.black) * gain_error) / line.gain;
    return line;
}

NoiseParabola fit_noise_parabola(const std::vector<NoisePoint>& curve, double black) {
    return best_fit(curve, black, all_terms);
}

bool fits_as_well(double simple, double other, size_t points) {
    return simple < (1 + 3.6 / static_cast<double>(points)) * other + 0.002;
}

double response_of(const std::vector<NoisePoint>& curve, double black) {
    const NoiseParabola with = best_fit(curve, black, all_terms);
    const NoiseParabola without = best_fit(curve, black, terms_of_a_line);
    return fits_as_well(without.misfit, with.misfit, curve.size()) ? 0 : std::sqrt(with.response);
}

} // namespace zerklsc::tool
