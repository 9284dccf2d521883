// simulate
#include "imaging/simulation.h"

#include <algorithm>
#include <cmath>

#include "imaging/random.h"

namespace zerklsc::tool {
namespace {

// Streams of random numbers, told apart by what they are for.
enum Stream : uint64_t { noise_stream, dust_stream, defect_stream, stream_count };
// The pixels' own sensitivities are the sensor's, whatever the seed.
constexpr uint64_t response_stream = ~uint64_t{0};

uint64_t stream_of(const SimulationSettings& settings, Stream use) {
    return settings.seed * stream_count + use;
}

// The cos^4 law: with t = (distance from the optical centre) / (focal length), cos^4 is 1 / (1 + t^2)^2. A
// corner brighter than the centre takes 2 minus that. The wave is 0 at the centre, half-way and at the
// corner.
class FallOff {
  public:
    FallOff(const SimulationSettings& settings, double corner_percent)
        : x_(settings.centre[0] / 100 * settings.width), y_(settings.centre[1] / 100 * settings.height),
          wave_(settings.wave / 100 * wave_peak) {
        const double half_w = settings.width / 2.0, half_h = settings.height / 2.0;
        rising_ = corner_percent > 100;
        const double corner = (rising_ ? 200 - corner_percent : corner_percent) / 100;
        s_per_pixel_ = 1 / (half_w * half_w + half_h * half_h);
        t2_corner_ = 1 / std::sqrt(corner) - 1;
    }

    double at(int x, int y) const {
        const double dx = x - x_, dy = y - y_;
        const double s = (dx * dx + dy * dy) * s_per_pixel_;
        const double t = 1 + s * t2_corner_;
        const double law = rising_ ? 2 - 1 / (t * t) : 1 / (t * t);
        return law * (1 + wave_ * s * (1 - s) * (1 - 2 * s));
    }

  private:
    static constexpr double wave_peak = 10.392; // 1 over the largest s (1 - s) (1 - 2 s) between 0 and 1
    double x_, y_, wave_, s_per_pixel_, t2_corner_;
    bool rising_;
};

// The transmission of the dust, pixel by pixel; empty where there is none.
std::vector<float> dust_map(const SimulationSettings& settings) {
    std::vector<float> map;
    if (settings.dust == 0)
        return map;
    map.assign(static_cast<size_t>(settings.width) * static_cast<size_t>(settings.height), 1.0F);
    const uint64_t stream = stream_of(settings, dust_stream);
    for (int spot = 0; spot < settings.dust; ++spot) {
        const auto draw = [&](int which, int limit) {
            return random_below(stream, 4 * static_cast<uint64_t>(spot) + static_cast<uint64_t>(which),
                                limit);
        };
        const int cx = draw(0, settings.width), cy = draw(1, settings.height);
        const int radius = 6 + draw(2, 35);
        const double depth = 0.05 + draw(3, 150) / 1000.0;
        for (int y = std::max(cy - radius, 0); y < std::min(cy + radius, settings.height); ++y)
            for (int x = std::max(cx - radius, 0); x < std::min(cx + radius, settings.width); ++x) {
                const double d2 = double((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (radius * radius);
                const double shade = d2 < 1 ? depth * (1 - d2) * (1 - d2) : 0;
                map[static_cast<size_t>(y) * static_cast<size_t>(settings.width) + static_cast<size_t>(x)] *=
                    static_cast<float>(1 - shade);
            }
    }
    return map;
}

void add_defects(RawFrame& frame, const SimulationSettings& settings) {
    const uint64_t stream = stream_of(settings, defect_stream);
    for (uint64_t i = 0; i < static_cast<uint64_t>(settings.defects); ++i) {
        const int x = random_below(stream, 2 * i, frame.width);
        const int y = random_below(stream, 2 * i + 1, frame.height);
        frame.at(x, y) = static_cast<uint16_t>(i % 2 == 0 ? frame.full_scale() : 0);
    }
}

// The deviation of photon and read noise at a signal, in sample units.
class Noise {
  public:
    Noise(const SimulationSettings& settings, int full_scale)
        : shot_(settings.full_well > 0 ? full_scale / settings.full_well : 0),
          read_(settings.full_well > 0 ? settings.read_noise * full_scale / settings.full_well : 0) {}
    double deviation(double signal) const { return std::sqrt(signal * shot_ + read_ * read_); }

  private:
    double shot_, read_;
};

RawFrame dark_frame(const SimulationSettings& settings) {
    RawFrame frame;
    frame.width = settings.width;
    frame.height = settings.height;
    frame.bits = settings.bits;
    frame.pattern = settings.pattern;
    frame.black = BlackLevel{settings.black, settings.black, settings.black, settings.black};
    frame.samples.resize(static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height));
    return frame;
}

} // namespace

RawFrame simulate(const SimulationSettings& settings) {
    RawFrame frame = dark_frame(settings);
    const double top = frame.full_scale();
    const double range = top - settings.black;
    const std::vector<float> dust = dust_map(settings);
    std::vector<LightFactor> factors;
    for (const Fault& fault : settings.faults)
        if (auto factor = light_factor(fault, frame, settings.seed))
            factors.push_back(std::move(factor));
    const Noise noise(settings, frame.full_scale());
    const uint64_t stream = stream_of(settings, noise_stream);
    for (int plane = 0; plane < 4; ++plane) {
        const Colour colour = colour_of_plane(settings.pattern, plane);
        const FallOff fall_off(settings, settings.corners[static_cast<size_t>(colour)]);
        const double centre =
            settings.level / 100 * range * settings.colour_levels[static_cast<size_t>(colour)] / 100;
        for (int y = plane >> 1; y < frame.height; y += 2)
            for (int x = plane & 1; x < frame.width; x += 2) {
                const size_t place =
                    static_cast<size_t>(y) * static_cast<size_t>(frame.width) + static_cast<size_t>(x);
                double signal = centre * fall_off.at(x, y);
                if (!dust.empty())
                    signal *= static_cast<double>(dust[place]);
                if (settings.response > 0)
                    signal *= 1 + settings.response / 100 * random_normal(response_stream, place);
                for (const LightFactor& factor : factors)
                    signal *= factor(x, y);
                const double noisy = signal + noise.deviation(signal) * random_normal(stream, place);
                frame.samples[place] =
                    static_cast<uint16_t>(std::clamp(noisy + settings.black + 0.5, 0.0, top));
            }
    }
    add_defects(frame, settings);
    for (const Fault& fault : settings.faults)
        spoil_samples(fault, frame, settings.seed);
    return frame;
}

} // namespace zerklsc::tool
