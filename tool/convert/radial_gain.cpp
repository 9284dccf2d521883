// surface_of, fit_radial_gain
#include "convert/radial_gain.h"

#include <algorithm>
#include <cmath>

#include "check/least_squares.h"

namespace zerklsc::tool {
namespace {

constexpr size_t terms = 5;
// Two for the centre, then the terms.
constexpr size_t unknowns = 2 + terms;
using Unknowns = std::array<double, unknowns>;

// Squared distances in the frame's half diagonals: a unit that does not move with the centre.
class Frame {
  public:
    Frame(int width, int height) : width_(width), height_(height) {
        const double diagonal = width_ * width_ + height_ * height_;
        x_scale_ = 4 * width_ * width_ / diagonal;
        y_scale_ = 4 * height_ * height_ / diagonal;
    }

    double squared_distance(double dx, double dy) const { return x_scale_ * dx * dx + y_scale_ * dy * dy; }
    double slope_x(double dx) const { return -2 * x_scale_ * dx; }
    double slope_y(double dy) const { return -2 * y_scale_ * dy; }
    double farthest_corner(double x, double y) const {
        return squared_distance(std::max(x, 1 - x), std::max(y, 1 - y));
    }

  private:
    double width_, height_, x_scale_, y_scale_;
};

double gain_at(const Frame& frame, const Unknowns& u, double x, double y) {
    const double q = frame.squared_distance(x - u[0], y - u[1]);
    double sum = 0;
    for (size_t i = terms; i-- > 0;)
        sum = (sum + u[2 + i]) * q;
    return 1 + sum;
}

double cost_of(const std::vector<GainPoint>& points, const Frame& frame, const Unknowns& u) {
    double cost = 0;
    for (const GainPoint& point : points) {
        const double deviation = gain_at(frame, u, point.x, point.y) / point.gain - 1;
        cost += deviation * deviation;
    }
    return cost;
}

// One step of Gauss and Newton, damped. `centre` says whether the centre moves.
Unknowns step_from(const std::vector<GainPoint>& points, const Frame& frame, const Unknowns& u,
                   double damping, bool centre) {
    NormalEquations<unknowns> equations;
    for (const GainPoint& point : points) {
        const double dx = point.x - u[0], dy = point.y - u[1], q = frame.squared_distance(dx, dy);
        Unknowns row{};
        double power = 1, slope = 0;
        for (size_t i = 0; i < terms; ++i) {
            slope += static_cast<double>(i + 1) * u[2 + i] * power;
            power *= q;
            row[2 + i] = power;
        }
        row[0] = centre ? slope * frame.slope_x(dx) : 0;
        row[1] = centre ? slope * frame.slope_y(dy) : 0;
        equations.add(row, point.gain - gain_at(frame, u, point.x, point.y), 1 / (point.gain * point.gain));
    }
    equations.damp(damping);
    const Unknowns change = equations.solve();
    Unknowns next = u;
    for (size_t i = 0; i < unknowns; ++i)
        next[i] += change[i];
    next[0] = std::clamp(next[0], 0.0, 1.0);
    next[1] = std::clamp(next[1], 0.0, 1.0);
    return next;
}

Unknowns fit(const std::vector<GainPoint>& points, const Frame& frame) {
    constexpr int most_steps = 100;
    constexpr double settled = 1e-12, hopeless = 1e8;
    Unknowns best = step_from(points, frame, {0.5, 0.5}, 0, false);
    double cost = cost_of(points, frame, best), damping = 1e-3;
    for (int step = 0; step < most_steps && damping < hopeless; ++step) {
        const Unknowns next = step_from(points, frame, best, damping, true);
        const double next_cost = cost_of(points, frame, next);
        if (next_cost >= cost) {
            damping *= 10;
            continue;
        }
        const bool done = cost - next_cost < settled * cost;
        best = next;
        cost = next_cost;
        damping /= 10;
        if (done)
            break;
    }
    return best;
}

} // namespace

GainSurface surface_of(const RadialGain& gain, int width, int height) {
    const Frame frame(width, height);
    Unknowns u{gain.centre_x, gain.centre_y};
    const double unit = 1 / frame.farthest_corner(gain.centre_x, gain.centre_y);
    double scale = 1;
    for (size_t i = 0; i < terms; ++i)
        u[2 + i] = gain.k[i] * (scale *= unit);
    return [frame, u](double x, double y) { return gain_at(frame, u, x, y); };
}

RadialFit fit_radial_gain(const std::vector<GainPoint>& points, int width, int height) {
    const Frame frame(width, height);
    const Unknowns u = fit(points, frame);
    RadialFit result;
    result.gain.centre_x = u[0];
    result.gain.centre_y = u[1];
    double scale = 1;
    for (size_t i = 0; i < terms; ++i)
        result.gain.k[i] = u[2 + i] * (scale *= frame.farthest_corner(u[0], u[1]));
    result.rms = std::sqrt(cost_of(points, frame, u) / static_cast<double>(points.size()));
    for (const GainPoint& point : points)
        result.largest =
            std::max(result.largest, std::abs(gain_at(frame, u, point.x, point.y) / point.gain - 1));
    return result;
}

} // namespace zerklsc::tool
