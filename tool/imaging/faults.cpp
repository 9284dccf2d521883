// fault_kinds, fault_from, light_factor
#include "imaging/faults.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "failure.h"
#include "imaging/random.h"

namespace zerklsc::tool {
namespace {

// A frame position as fractions of the width, so that circles are round.
struct Spot {
    double x, y;
};

// Numbers of a fault that the seed chooses.
class Draw {
  public:
    explicit Draw(uint64_t seed) : stream_(seed * 8 + 5) {}
    double between(double lowest, double highest) {
        return lowest + (highest - lowest) * random_below(stream_, place_++, 1 << 20) / (1 << 20);
    }

  private:
    uint64_t stream_, place_ = 0;
};

// 0 up to `from`, 1 from `to` on, smooth between.
double smooth_step(double from, double to, double at) {
    const double t = std::clamp((at - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

// A wave of period 1 between -1 and 1, made of parabolas.
double wave(double t) {
    t -= std::floor(t);
    return t < 0.5 ? 16 * t * (0.5 - t) : -16 * (t - 0.5) * (1 - t);
}

// 1 in the middle, 0 from the radius on.
double bump(Spot at, Spot middle, double radius) {
    const double dx = at.x - middle.x, dy = at.y - middle.y;
    const double rest = std::max(0.0, 1 - (dx * dx + dy * dy) / (radius * radius));
    return rest * rest;
}

// Noise from -1 to 1 that changes over `cell`, interpolated between random values.
double value_noise(Spot at, double cell, uint64_t stream) {
    const double x = at.x / cell, y = at.y / cell;
    const double i = std::floor(x), j = std::floor(y);
    const auto node = [&](double di, double dj) {
        const auto place = static_cast<uint64_t>((j + dj) * 65536 + i + di);
        return random_below(stream, place, 65536) / 32767.5 - 1;
    };
    const double fx = smooth_step(0, 1, x - i), fy = smooth_step(0, 1, y - j);
    const double top = node(0, 0) * (1 - fx) + node(1, 0) * fx;
    const double bottom = node(0, 1) * (1 - fx) + node(1, 1) * fx;
    return top * (1 - fy) + bottom * fy;
}

using Scene = std::function<double(Spot at)>;

// The frame as the scene sees it.
struct View {
    double height; // as a fraction of the width
    double pixel;  // one pixel
};

Scene uneven(double amount, View, Draw) {
    return [=](Spot at) { return 1 - amount * at.x; };
}

Scene uneven_rows(double amount, View view, Draw) {
    return [=](Spot at) { return 1 - amount * at.y / view.height; };
}

Scene uneven_diagonal(double amount, View view, Draw) {
    return [=](Spot at) { return 1 - amount * (at.x + at.y) / (1 + view.height); };
}

Scene flicker(double amount, View view, Draw draw) {
    const double periods = draw.between(5, 17), phase = draw.between(0, 1);
    return [=](Spot at) { return 1 + amount * wave(at.y / view.height * periods + phase); };
}

Scene flare_spot(double amount, View view, Draw draw) {
    const Spot middle{draw.between(0.2, 0.8), draw.between(0.2, 0.8) * view.height};
    const double radius = draw.between(0.08, 0.2);
    return [=](Spot at) { return 1 + amount * bump(at, middle, radius); };
}

Scene flare_ring(double amount, View view, Draw draw) {
    const Spot middle{draw.between(0.4, 0.6), draw.between(0.4, 0.6) * view.height};
    const double radius = draw.between(0.15, 0.3);
    return [=](Spot at) {
        const double dx = at.x - middle.x, dy = at.y - middle.y;
        const double away = std::abs(std::sqrt(dx * dx + dy * dy) - radius);
        return 1 + amount * (1 - smooth_step(0, 0.03, away));
    };
}

Scene fine_texture(double amount, View view, Draw draw) {
    const auto stream = static_cast<uint64_t>(draw.between(0, 1e6));
    const double cell = 3 * view.pixel;
    return [=](Spot at) { return 1 + amount * value_noise(at, cell, stream); };
}

Scene coarse_texture(double amount, View, Draw draw) {
    const auto stream = static_cast<uint64_t>(draw.between(0, 1e6));
    const double cell = draw.between(0.01, 0.04);
    return [=](Spot at) { return 1 + amount * value_noise(at, cell, stream); };
}

Scene checkerboard(double amount, View, Draw draw) {
    const double side = draw.between(0.02, 0.12);
    return [=](Spot at) {
        const double cell = std::floor(at.x / side) + std::floor(at.y / side);
        return cell - 2 * std::floor(cell / 2) > 0.5 ? 1 - amount : 1;
    };
}

Scene card_edge(double amount, View view, Draw draw) {
    const double position = draw.between(0.55, 0.9), slope = draw.between(-0.3, 0.3);
    const double blur = draw.between(2, 40) * view.pixel;
    return [=](Spot at) {
        return 1 - amount * smooth_step(0, blur, at.x + slope * (at.y - view.height / 2) - position);
    };
}

Scene shadow_band(double amount, View view, Draw draw) {
    const double position = draw.between(0.2, 0.8), slope = draw.between(-0.5, 0.5);
    const double half = draw.between(0.03, 0.08);
    return [=](Spot at) {
        const double away = std::abs(at.x + slope * (at.y - view.height / 2) - position);
        return 1 - amount * (1 - smooth_step(half * 0.7, half * 1.3, away));
    };
}

// A palm at the lower edge with four fingers above it.
Scene hand(double amount, View view, Draw draw) {
    const double left = draw.between(0.15, 0.6), top = draw.between(0.45, 0.65) * view.height;
    return [=](Spot at) {
        double covered = bump(at, {left + 0.12, view.height}, 0.3);
        for (int finger = 0; finger < 4; ++finger) {
            const double x = left + 0.07 * finger;
            const double across = 1 - smooth_step(0.015, 0.035, std::abs(at.x - x));
            covered = std::max(covered, across * smooth_step(top - 0.02, top + 0.02, at.y));
        }
        return 1 - amount * std::min(1.0, 2 * covered);
    };
}

Scene blob(double amount, View view, Draw draw) {
    const Spot middle{draw.between(0.15, 0.85), draw.between(0.15, 0.85) * view.height};
    const double radius = draw.between(0.06, 0.25);
    return [=](Spot at) { return 1 - amount * bump(at, middle, radius); };
}

Scene half_black(double, View, Draw) {
    return [](Spot at) { return at.x < 0.5 ? 1.0 : 0.0; };
}

Scene masked_corner(double amount, View view, Draw draw) {
    const bool right = draw.between(0, 1) > 0.5, low = draw.between(0, 1) > 0.5;
    return [=](Spot at) {
        const double x = right ? 1 - view.pixel - at.x : at.x;
        const double y = low ? view.height - view.pixel - at.y : at.y;
        return std::max(x, y) < amount ? 0.0 : 1.0;
    };
}

Scene dark_corner(double amount, View view, Draw draw) {
    const Spot corner{draw.between(0, 1) > 0.5 ? 1.0 : 0.0, draw.between(0, 1) > 0.5 ? view.height : 0.0};
    const double radius = draw.between(0.1, 0.3);
    return [=](Spot at) {
        const double dx = at.x - corner.x, dy = at.y - corner.y;
        return 1 - (1 - amount) * (1 - smooth_step(radius * 0.6, radius, std::sqrt(dx * dx + dy * dy)));
    };
}

struct SceneFault {
    FaultKind kind;
    Scene (*make)(double amount, View view, Draw draw);
};

// Amounts in percent.
const std::vector<SceneFault>& scene_faults() {
    static const std::vector<SceneFault> faults{
        {{"uneven", "light that falls by this from left to right", 20, -100, 100}, uneven},
        {{"uneven-rows", "the same from top to bottom", 20, -100, 100}, uneven_rows},
        {{"uneven-diagonal", "the same from corner to corner", 20, 0, 100}, uneven_diagonal},
        {{"flicker", "rows that are brighter and darker by this", 5, 0, 100}, flicker},
        {{"flare-spot", "a bright spot", 15, 0, 1000}, flare_spot},
        {{"flare-ring", "a bright ring", 10, 0, 1000}, flare_ring},
        {{"fine-texture", "grain of three pixels", 5, 0, 100}, fine_texture},
        {{"coarse-texture", "clouds of a few percent of the width", 10, 0, 100}, coarse_texture},
        {{"checkerboard", "squares that are darker by this", 80, 0, 100}, checkerboard},
        {{"card-edge", "one side darker by this", 40, 0, 100}, card_edge},
        {{"shadow-band", "a slanted band darker by this", 30, 0, 100}, shadow_band},
        {{"hand", "the shadow of a hand", 50, 0, 100}, hand},
        {{"blob", "one soft patch darker by this", 60, 0, 100}, blob},
        {{"half-black", "no light on the right half", 100, 100, 100}, half_black},
        {{"masked-corner", "a black square in a corner, this part of the width", 5, 0, 100}, masked_corner},
        {{"dark-corner", "a corner at this part of its light", 10, 0, 100}, dark_corner},
    };
    return faults;
}

std::vector<FaultKind> all_kinds() {
    std::vector<FaultKind> kinds;
    for (const SceneFault& fault : scene_faults())
        kinds.push_back(fault.kind);
    kinds.insert(
        kinds.end(),
        {
            {"plane-level", "the B plane at this part of its level, percent", 2, 0, 100},
            {"gr-gb", "the Gb plane darker by this, percent", 10, 0, 100},
            {"saturation", "nothing brighter than this part of full scale, percent", 50, 0, 100},
            {"dead-lines", "this many dead rows and columns", 3, 1, 1000},
            {"swapped-bytes", "high and low byte exchanged, of this part of the rows, percent", 100, 1, 100},
            {"wrong-width", "rows that are this many pixels longer than they are said to be", 16, 2, 1000},
            {"exchanged-sides", "width taken for height", 1, 1, 1},
            {"random", "random numbers instead of an image", 1, 1, 1},
            {"constant", "one number everywhere: this part of full scale, percent", 50, 0, 100},
            {"left-aligned", "samples in the upper bits of 16-bit words", 1, 1, 1},
            {"rotated", "the module held by 180 degrees, pattern and light turned with it", 1, 1, 1},
            {"stated-black", "the black level that the file states, in samples", 0, 0, 65535},
        });
    return kinds;
}

} // namespace

const std::vector<FaultKind>& fault_kinds() {
    static const std::vector<FaultKind> kinds = all_kinds();
    return kinds;
}

Fault fault_from(const std::string& text) {
    const std::string name = text.substr(0, text.find('='));
    const auto kind = std::ranges::find_if(fault_kinds(), [&](const FaultKind& k) { return k.name == name; });
    if (kind == fault_kinds().end())
        usage_failure("--fault: {} is not known: zerklsc simulate --help lists the faults", name);
    Fault fault{name, kind->usual};
    if (name.size() == text.size())
        return fault;
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data() + name.size() + 1, end, fault.amount);
    if (error != std::errc{} || next != end
        || !(fault.amount >= kind->lowest && fault.amount <= kind->highest))
        usage_failure("--fault: {} takes a number from {} to {}, not {}", name, kind->lowest, kind->highest,
                      text.substr(std::min(name.size() + 1, text.size())));
    return fault;
}

LightFactor light_factor(const Fault& fault, const RawFrame& frame, uint64_t seed) {
    for (const SceneFault& known : scene_faults())
        if (fault.name == known.kind.name) {
            const double width = frame.width;
            const Scene scene = known.make(fault.amount / 100, {frame.height / width, 1 / width}, Draw(seed));
            return [scene, width](int x, int y) { return scene({x / width, y / width}); };
        }
    const BayerPattern pattern = *frame.pattern;
    const auto only = [&](Colour colour, double factor) -> LightFactor {
        const int plane = plane_of_colour(pattern, colour);
        return [=](int x, int y) { return plane_of_pixel(x, y) == plane ? factor : 1; };
    };
    if (fault.name == "plane-level")
        return only(Colour::b, fault.amount / 100);
    if (fault.name == "gr-gb")
        return only(Colour::gb, 1 - fault.amount / 100);
    return {};
}

} // namespace zerklsc::tool
