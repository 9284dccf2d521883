// read_rkisp1
#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include "convert/radial_gain.h"
#include "convert/shading_file.h"
#include "failure.h"
#include "io/yaml_document.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int vertices = 17;
constexpr int highest_word = 4095;
constexpr std::array<const char*, 4> colour_names{"r", "gr", "gb", "b"}; // by Colour

YamlNode find_shading(const std::string& path, const YamlNode& root) {
    for (const YamlNode& algorithm : root["algorithms"].elements())
        if (const YamlNode shading = algorithm["LensShadingCorrection"])
            return shading;
    data_failure("{}: has no LensShadingCorrection in its algorithms: expected a libcamera tuning file with "
                 "lens shading",
                 path);
}

// Half a side in eight sectors, which the other half mirrors. The library interpolates between nodes at equal
// distances.
void check_sectors(const std::string& path, const YamlNode& shading, const char* name) {
    constexpr double sector = 1.0 / (vertices - 1), rounding = 1e-3;
    const auto sizes = shading[name].elements();
    bool equal = sizes.size() == (vertices - 1) / 2;
    for (const YamlNode& size : sizes)
        equal = equal && std::abs(size.number().value_or(0) - sector) < rounding;
    if (!equal)
        data_failure("{}: {} is not eight sectors of {}: only grids of equal sectors are read", path, name,
                     sector);
}

std::vector<double> read_gains(const std::string& path, const YamlNode& list, const std::string& name,
                               int& at_limit) {
    std::vector<double> gains;
    for (const YamlNode& element : list.elements()) {
        const double word = element.number().value_or(0);
        if (!(word >= 1 && word <= highest_word))
            data_failure("{}: {} holds \"{}\", which is not a gain from 1 to {}", path, name, element.shown(),
                         highest_word);
        at_limit += word == highest_word ? 1 : 0;
        gains.push_back(word / double{ZERKLSC_UNITY_GAIN});
    }
    if (gains.size() != size_t{vertices} * vertices)
        data_failure("{}: {} holds {} gains, not {} x {}", path, name, gains.size(), vertices, vertices);
    return gains;
}

// "4208x3120"; files of other origin may say no resolution.
void read_resolution(const std::string& path, const YamlNode& node, ShadingSet& set) {
    if (!node)
        return;
    const std::string_view text = node.text();
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, set.width);
    const bool separated = width.ec == std::errc{} && width.ptr != end && *width.ptr == 'x';
    const auto height = std::from_chars(separated ? width.ptr + 1 : end, end, set.height);
    if (height.ec != std::errc{} || height.ptr != end || set.width < 2 || set.height < 2
        || set.width > largest_side || set.height > largest_side)
        data_failure("{}: a resolution of \"{}\" is not WIDTHxHEIGHT", path, node.shown());
    set.width &= ~1;
    set.height &= ~1;
}

double read_number(const std::string& path, const YamlNode& node, const std::string& name, double lowest,
                   double highest) {
    const auto value = node.number();
    if (!value || !(*value >= lowest && *value <= highest))
        data_failure("{}: {} is \"{}\", which is not a number from {} to {}", path, name, node.shown(),
                     lowest, highest);
    return *value;
}

// Distances are in pixels, so the radial form needs the shape of the frame.
GainSurface read_radial(const std::string& path, const YamlNode& node, const std::string& name,
                        const ShadingSet& set, FrameSize size) {
    constexpr double highest_term = 1e6;
    if (set.width != 0)
        size = {set.width, set.height};
    if (size.width == 0)
        data_failure(
            "{}: its sets say no resolution, which their radial form needs: give --size WIDTH,HEIGHT", path);
    RadialGain gain;
    gain.centre_x = read_number(path, node["cx"], "cx of " + name, 0, 1);
    gain.centre_y = read_number(path, node["cy"], "cy of " + name, 0, 1);
    for (size_t i = 0; i < gain.k.size(); ++i) {
        const std::string term = fmt::format("k{}", i);
        gain.k[i] =
            read_number(path, node[term], fmt::format("{} of {}", term, name), -highest_term, highest_term);
    }
    return surface_of(gain, size.width, size.height);
}

GainSurface read_table(const std::string& path, const YamlNode& node, const std::string& name,
                       int& at_limit) {
    constexpr GridAxis axis{vertices, 0, 1.0 / (vertices - 1)};
    return surface_of({axis, axis, read_gains(path, node, name, at_limit)});
}

ShadingSet read_set(const std::string& path, const YamlNode& node, bool radial, FrameSize size) {
    const double kelvin = node["ct"].number().value_or(0);
    if (!(kelvin >= 1 && kelvin <= 100000))
        data_failure("{}: a set has the colour temperature \"{}\", which is not a number of kelvin", path,
                     node["ct"].shown());
    ShadingSet set;
    set.kelvin = static_cast<int>(kelvin);
    read_resolution(path, node["resolution"], set);
    for (const Colour colour : all_colours) {
        const char* const key = colour_names[static_cast<size_t>(colour)];
        if (!node[key])
            data_failure("{}: the set of {} K has no \"{}\"", path, set.kelvin, key);
        const std::string name = fmt::format("\"{}\" of {} K", key, set.kelvin);
        set.of(colour) = radial ? read_radial(path, node[key], name, set, size)
                                : read_table(path, node[key], name, set.at_limit);
    }
    return set;
}

} // namespace

ShadingFile read_rkisp1(const std::string& path, FrameSize size) {
    YamlDocument document(read_file(path, largest_tuning_file), path);
    const YamlNode shading = find_shading(path, document.root());
    const std::string_view type = shading["type"].text();
    const bool radial = type == "polynomial";
    if (!radial && !type.empty() && type != "table")
        data_failure("{}: its LensShadingCorrection is of type \"{}\": expected table or polynomial", path,
                     shading["type"].shown());
    ShadingFile file;
    if (radial) {
        file.losses.emplace_back("holds one radial polynomial for each colour: what is not the same all "
                                 "around its centre is lost");
    } else {
        check_sectors(path, shading, "x-size");
        check_sectors(path, shading, "y-size");
    }
    file.format = "rkisp1";
    file.has_nodes = !radial;
    for (const YamlNode& node : shading["sets"].elements())
        file.sets.push_back(read_set(path, node, radial, size));
    if (file.sets.empty())
        data_failure("{}: LensShadingCorrection has no sets", path);
    file.spacing_x = file.spacing_y = 1.0 / (vertices - 1);
    return file;
}

} // namespace zerklsc::tool
