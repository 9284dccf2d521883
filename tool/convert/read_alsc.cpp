// read_alsc
#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "convert/shading_file.h"
#include "failure.h"
#include "io/json_text.h"

namespace zerklsc::tool {
namespace {

using nlohmann::json;

constexpr double highest_factor = 64;

struct LitTable {
    int kelvin;
    std::vector<double> gains;
};

// The object of rpi.alsc, where files of version 2 and of version 1 have it.
const json& find_alsc(const std::string& path, const json& root) {
    static constexpr const char* name = "rpi.alsc";
    if (root.is_object() && root.contains(name))
        return root[name];
    if (root.is_object() && root.contains("algorithms") && root["algorithms"].is_array())
        for (const json& algorithm : root["algorithms"])
            if (algorithm.is_object() && algorithm.contains(name))
                return algorithm[name];
    data_failure("{}: has no \"{}\": expected a Raspberry Pi tuning file with lens shading", path, name);
}

std::vector<double> read_table(const std::string& path, const json& table, const std::string& name) {
    constexpr size_t large = size_t{32} * 32, small = size_t{16} * 12;
    if (!table.is_array() || (table.size() != large && table.size() != small))
        data_failure("{}: {} holds {} values, not 32 x 32 or 16 x 12", path, name,
                     table.is_array() ? table.size() : 0);
    std::vector<double> gains;
    for (const json& gain : table) {
        if (!gain.is_number() || !(gain.get<double>() > 0 && gain.get<double>() <= highest_factor))
            data_failure("{}: {} holds {}, which is not a factor above 0 and up to {}", path, name,
                         shown(gain), highest_factor);
        gains.push_back(gain.get<double>());
    }
    return gains;
}

std::vector<LitTable> read_calibrations(const std::string& path, const json& alsc, const char* name) {
    std::vector<LitTable> tables;
    if (!alsc.is_object() || !alsc.contains(name) || !alsc[name].is_array() || alsc[name].empty())
        data_failure("{}: rpi.alsc has no list \"{}\"", path, name);
    for (const json& entry : alsc[name]) {
        if (!entry.is_object() || !entry.contains("ct") || !entry["ct"].is_number()
            || !entry.contains("table"))
            data_failure("{}: \"{}\" holds an entry without \"ct\" or \"table\"", path, name);
        const double kelvin = entry["ct"].get<double>();
        if (!(kelvin >= 1 && kelvin <= 100000))
            data_failure("{}: \"{}\" holds a colour temperature of {} K", path, name, kelvin);
        tables.push_back({static_cast<int>(kelvin),
                          read_table(path, entry["table"], fmt::format("\"{}\" at {} K", name, kelvin))});
    }
    return tables;
}

GainGrid cell_grid(const std::vector<double>& luminance, const std::vector<double>* ratio) {
    const int columns = luminance.size() == 1024 ? 32 : 16, rows = luminance.size() == 1024 ? 32 : 12;
    GainGrid grid{{columns, 0.5 / columns, 1.0 / columns}, {rows, 0.5 / rows, 1.0 / rows}, luminance};
    if (ratio != nullptr)
        std::ranges::transform(grid.gains, *ratio, grid.gains.begin(), std::multiplies{});
    return grid;
}

void add_set(const std::string& path, ShadingFile& file, const std::vector<double>& luminance,
             const LitTable& red, const LitTable& blue) {
    if (red.gains.size() != luminance.size() || blue.gains.size() != luminance.size())
        data_failure("{}: the tables of rpi.alsc have different sizes", path);
    ShadingSet set;
    set.kelvin = red.kelvin;
    set.of(Colour::r) = surface_of(cell_grid(luminance, &red.gains));
    set.of(Colour::gr) = surface_of(cell_grid(luminance, nullptr));
    set.of(Colour::gb) = set.of(Colour::gr);
    set.of(Colour::b) = surface_of(cell_grid(luminance, &blue.gains));
    file.sets.push_back(std::move(set));
}

// The sets of temperatures that both lists have.
void add_sets(const std::string& path, ShadingFile& file, const json& alsc,
              const std::vector<double>& luminance) {
    const auto reds = read_calibrations(path, alsc, "calibrations_Cr");
    const auto blues = read_calibrations(path, alsc, "calibrations_Cb");
    for (const LitTable& red : reds) {
        const auto blue = std::ranges::find(blues, red.kelvin, &LitTable::kelvin);
        if (blue != blues.end())
            add_set(path, file, luminance, red, *blue);
    }
    if (file.sets.empty())
        data_failure("{}: \"calibrations_Cr\" and \"calibrations_Cb\" have no colour temperature in common",
                     path);
    if (file.sets.size() != reds.size() || file.sets.size() != blues.size())
        file.losses.emplace_back("tables of temperatures that only one of Cr and Cb has are left out");
}

} // namespace

ShadingFile read_alsc(const std::string& path) {
    const std::string bytes = read_file(path, largest_tuning_file);
    const json root = parse_json(bytes);
    if (root.is_discarded())
        data_failure("{}: {}: expected a Raspberry Pi tuning file", path, why_discarded(bytes));
    const json& alsc = find_alsc(path, root);
    ShadingFile file;
    file.format = "alsc";
    std::vector<double> luminance;
    if (alsc.is_object() && alsc.contains("luminance_lut"))
        luminance = read_table(path, alsc["luminance_lut"], "\"luminance_lut\"");
    else
        luminance.assign(read_calibrations(path, alsc, "calibrations_Cr").front().gains.size(), 1.0);
    add_sets(path, file, alsc, luminance);
    file.spacing_x = luminance.size() == 1024 ? 1.0 / 32 : 1.0 / 16;
    file.spacing_y = luminance.size() == 1024 ? 1.0 / 32 : 1.0 / 12;
    file.losses.emplace_back(
        "holds one green, three decimals, and every table relative to its minimum: Gr and "
        "Gb are equal, and the gains of a colour are right but for a common factor");
    file.losses.emplace_back("has one luminance table for all colour temperatures");
    if (alsc.contains("luminance_strength") && alsc["luminance_strength"] != 1.0)
        file.losses.push_back(
            fmt::format("its luminance_strength of {} is not applied: the gains correct fully",
                        shown(alsc["luminance_strength"])));
    return file;
}

} // namespace zerklsc::tool
