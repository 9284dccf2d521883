// simulate
#include "imaging/simulation.h"

#include <algorithm>
#include <cmath>

#include "imaging/random.h"

namespace zerklsc::tool {
namespace {

// Streams of random numbers, told apart by what they are for.
enum Stream : uint64_t { noise_stream, dust_stream, defect_stream, stream_count };

uint64_t stream_of(const SimulationSettings& settings, Stream use) {
    return settings.seed * stream_count + use;
}

// How bright the colours are beside green, as under daylight.
double colour_level(Colour colour) {
    return colour == Colour::r ? 0.62 : colour == Colour::b ? 0.7 : 1.0;
}

// The cos^4 law: with t = (distance from the optical centre) / (focal length), cos^4 is 1 / (1 + t^2)^2.
class FallOff {
  public:
    FallOff(const SimulationSettings& settings, double corner_percent)
        : x_(settings.centre[0] / 100 * settings.width), y_(settings.centre[1] / 100 * settings.height) {
        const double half_w = settings.width / 2.0, half_h = settings.height / 2.0;
        const double t2_corner = 1 / std::sqrt(corner_percent / 100) - 1;
        t2_per_pixel_ = t2_corner / (half_w * half_w + half_h * half_h);
    }

    double at(int x, int y) const {
        const double dx = x - x_, dy = y - y_;
        const double s = 1 + (dx * dx + dy * dy) * t2_per_pixel_;
        return 1 / (s * s);
    }

  private:
    double x_, y_, t2_per_pixel_;
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

} // namespace

RawFrame simulate(const SimulationSettings& settings) {
    RawFrame frame;
    frame.width = settings.width;
    frame.height = settings.height;
    frame.bits = settings.bits;
    frame.pattern = settings.pattern;
    frame.black = BlackLevel{settings.black, settings.black, settings.black, settings.black};
    frame.samples.resize(static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height));

    const double top = frame.full_scale();
    const double range = top - settings.black;
    const std::vector<float> dust = dust_map(settings);
    const Noise noise(settings, frame.full_scale());
    const uint64_t stream = stream_of(settings, noise_stream);
    for (int plane = 0; plane < 4; ++plane) {
        const Colour colour = colour_of_plane(settings.pattern, plane);
        const FallOff fall_off(settings, settings.corners[static_cast<size_t>(colour)]);
        const double centre = settings.level / 100 * range * colour_level(colour);
        for (int y = plane >> 1; y < frame.height; y += 2)
            for (int x = plane & 1; x < frame.width; x += 2) {
                const size_t place =
                    static_cast<size_t>(y) * static_cast<size_t>(frame.width) + static_cast<size_t>(x);
                double signal = centre * fall_off.at(x, y);
                if (!dust.empty())
                    signal *= static_cast<double>(dust[place]);
                const double noisy = signal + noise.deviation(signal) * random_normal(stream, place);
                frame.samples[place] =
                    static_cast<uint16_t>(std::clamp(noisy + settings.black + 0.5, 0.0, top));
            }
    }
    add_defects(frame, settings);
    return frame;
}

} // namespace zerklsc::tool
