// add_convert_inputs, read_convert_inputs
#include "commands/convert_inputs.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "commands/number_list.h"
#include "convert/shading_file.h"
#include "failure.h"
#include "imaging/resampling.h"
#include "io/input_record.h"
#include "io/number_text.h"
#include "io/table_json.h"
#include "io/table_text.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

constexpr int coldest = 1000, hottest = 20000;
// That of calibrate, unless the nodes of the file are closer.
constexpr int widest_step = 64;
constexpr int usual_bits = 10;

// --size; 0 where it is not given.
FrameSize size_of(const ConvertInputs& inputs) {
    if (inputs.size.empty())
        return {};
    const auto size = integer_list("--size", inputs.size, 2, 2, largest_side);
    check_even(size[0], size[1]);
    return {size[0], size[1]};
}

// What a file does not say about its tables, in one warning.
void set_description(const std::string& path, const RawOptions& raw, const ShadingFile& file,
                     GainTables& tables) {
    std::vector<std::string> unknown, taken, options;
    const auto take = [&](const char* what, const std::string& value, const char* option) {
        unknown.emplace_back(what);
        taken.push_back(value);
        options.emplace_back(option);
    };
    if (!raw.pattern.empty() && file.pattern && pattern_of_option(raw.pattern) != *file.pattern)
        data_failure("{}: is for the Bayer pattern {}, not {}: leave --pattern away", path,
                     name_of(*file.pattern), raw.pattern);
    tables.pattern =
        !raw.pattern.empty() ? pattern_of_option(raw.pattern) : file.pattern.value_or(BayerPattern::rggb);
    if (raw.pattern.empty() && !file.pattern)
        take("Bayer pattern", "RGGB", "--pattern");
    tables.bits = raw.hints.bits != 0 ? raw.hints.bits : file.bits != 0 ? file.bits : usual_bits;
    if (raw.hints.bits == 0 && file.bits == 0)
        take("bit depth", fmt::format("{}", usual_bits), "--bits");
    tables.black = !raw.black.empty() ? black_level_of_option(raw.black) : file.black.value_or(BlackLevel{});
    if (raw.black.empty() && !file.black)
        take("black level", "0", "--black-level");
    const bool several = unknown.size() > 1;
    if (!unknown.empty())
        warn(fmt::format("{}: says no {}: {} {} taken ({} {})", path, fmt::join(unknown, ", "),
                         fmt::join(taken, ", "), several ? "are" : "is", fmt::join(options, ", "),
                         several ? "say others" : "says another"));
}

int step_for(const ConvertInputs& inputs, const ShadingFile& file, const GainTables& tables) {
    if (inputs.step != 0)
        return inputs.step;
    const double own =
        std::min(file.spacing_x * tables.plane_width(), file.spacing_y * tables.plane_height());
    return std::clamp(static_cast<int>(own), 1, widest_step);
}

void check_detail(const std::string& path, const ShadingFile& file, const GainTables& tables) {
    const double x = file.spacing_x * tables.plane_width(), y = file.spacing_y * tables.plane_height();
    if (!file.has_nodes)
        return;
    if (tables.step > x || tables.step > y)
        warn(fmt::format(
            "{}: its nodes are {:.1f} x {:.1f} plane samples apart, closer than --step {}: detail "
            "between is lost",
            path, x, y, tables.step));
    else if (2 * tables.step <= x || 2 * tables.step <= y)
        warn(fmt::format(
            "{}: its nodes are {:.1f} x {:.1f} plane samples apart, wider than --step {}: the gains between "
            "are interpolated",
            path, x, y, tables.step));
}

std::vector<int> temperatures(const ShadingFile& file) {
    std::vector<int> kelvin;
    for (const ShadingSet& set : file.sets)
        kelvin.push_back(set.kelvin);
    return kelvin;
}

std::vector<int> wanted_temperatures(const ConvertInputs& inputs) {
    const auto wanted = numbers_from<int>(inputs.kelvin, 1, hottest);
    if (!wanted)
        usage_failure("--ct: {} is not a list of colour temperatures with commas between", inputs.kelvin);
    return *wanted;
}

// Refuses words that are none before any file is read, also where the files leave nothing to be said.
void check_words(const ConvertInputs& inputs, const RawOptions& raw) {
    if (!inputs.kelvin.empty())
        wanted_temperatures(inputs);
    if (!raw.black.empty())
        black_level_of_option(raw.black);
    if (!raw.pattern.empty())
        pattern_of_option(raw.pattern);
}

// The sets of the file that --ct names; all of them where it is not given.
std::vector<ShadingSet> chosen_sets(const ConvertInputs& inputs, const ShadingFile& file) {
    if (inputs.kelvin.empty())
        return file.sets;
    const std::vector<int> wanted = wanted_temperatures(inputs);
    std::vector<ShadingSet> sets;
    // A file that says no temperature takes that of the command line.
    if (file.sets.front().kelvin == 0) {
        if (wanted.size() != 1)
            usage_failure("--ct: {} holds tables for one light: give its colour temperature alone",
                          inputs.paths[0]);
        sets = file.sets;
        sets.front().kelvin = wanted.front();
        return sets;
    }
    for (const int kelvin : wanted) {
        const auto found = std::ranges::find(file.sets, kelvin, &ShadingSet::kelvin);
        if (found == file.sets.end())
            data_failure("{}: has no set of {} K: give --ct one of {}", inputs.paths[0], kelvin,
                         fmt::join(temperatures(file), ", "));
        sets.push_back(*found);
    }
    return sets;
}

// Camera stacks interpolate between two sets; nothing lies between two of one temperature.
void check_temperatures(const ConvertInputs& inputs, const std::vector<LitTables>& sets) {
    std::vector<int> kelvin;
    kelvin.reserve(sets.size());
    for (const LitTables& set : sets)
        kelvin.push_back(set.kelvin);
    std::ranges::sort(kelvin);
    const auto twice = std::ranges::adjacent_find(kelvin);
    if (twice == kelvin.end())
        return;
    const std::string fault =
        fmt::format("{} K stands twice: each set needs a colour temperature of its own", *twice);
    if (inputs.kelvin.empty())
        data_failure("{}: {}", inputs.paths[0], fault);
    usage_failure("--ct: {}", fault);
}

std::vector<LitTables> tables_of_file(const ConvertInputs& inputs, const RawOptions& raw,
                                      const ShadingFile& file, const std::optional<FileState>& state,
                                      const std::string& format, bool lit) {
    const std::string& path = inputs.paths[0];
    const std::vector<ShadingSet> sets = chosen_sets(inputs, file);
    if (!lit && sets.size() != 1)
        usage_failure("{}: holds sets for {} K, and {} takes one: choose it by --ct", path,
                      fmt::join(temperatures(file), ", "), format);
    if (lit && sets.front().kelvin == 0)
        usage_failure("{}: says no colour temperature, and {} needs it: give --ct, as --ct 5000", path,
                      format);
    if (inputs.size.empty()
        && std::ranges::any_of(sets, [](const ShadingSet& set) { return set.width == 0; }))
        usage_failure("{}: says no frame size: give --size WIDTH,HEIGHT", path);
    GainTables about;
    about.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    about.inputs = {input_record(file.pattern ? "DNG with gain maps" : "tuning file", path, state)};
    set_description(path, raw, file, about);
    Losses losses = file.losses;
    std::vector<LitTables> result;
    for (const ShadingSet& set : sets) {
        const FrameSize size = inputs.size.empty() ? FrameSize{set.width, set.height} : size_of(inputs);
        about.raw_width = size.width;
        about.raw_height = size.height;
        about.step = step_for(inputs, file, about);
        check_detail(path, file, about);
        if (set.at_limit > 0)
            losses.push_back(
                fmt::format("{} gains at {} K stand at the limit of the format, and may have been higher",
                            set.at_limit, set.kelvin));
        result.push_back({tables_of(set, about, path, losses), set.kelvin});
    }
    if (lit)
        check_temperatures(inputs, result);
    for (const std::string& loss : losses)
        warn(fmt::format("{}: {}", path, loss));
    return result;
}

GainTables read_text(const ConvertInputs& inputs, const std::string& path, const RawOptions& raw) {
    if (inputs.size.empty() || inputs.step == 0)
        usage_failure(
            "{}: a text table does not say its geometry: give the --size and --step that it was made for",
            path);
    GainTables tables;
    tables.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    const FrameSize size = size_of(inputs);
    tables.raw_width = size.width;
    tables.raw_height = size.height;
    tables.step = inputs.step;
    check_grid(tables.raw_width, tables.raw_height, tables.step, path);
    set_description(path, raw, {}, tables);
    const auto state = file_state(path);
    read_table_text(path, tables);
    tables.inputs = {input_record("table in text", path, state)};
    return tables;
}

GainTables read_own(const ConvertInputs& inputs, const std::string& path, const RawOptions& raw) {
    if (extension_of(path) == ".txt")
        return read_text(inputs, path, raw);
    GainTables tables = read_whole_gains(path);
    if (inputs.step != 0 || !inputs.size.empty())
        usage_failure("{}: a table file has its step and size: zerklsc resample gives it others", path);
    return tables;
}

} // namespace

void add_convert_inputs(Command command, ConvertInputs& inputs) {
    command
        .option("tables", inputs.paths,
                "table files (JSON, or text with --size and --step), or one file of a camera stack: rkisp1 "
                "or alsc tuning file, DNG with gain maps")
        .required()
        .takes("FILE");
    command
        .option(
            "--ct", inputs.kelvin,
            "colour temperatures in kelvin, as 2856,5000: of each table file (rkisp1, alsc need them); of a "
            "tuning file, the sets to take (default: all that the output holds)")
        .takes("KELVIN");
    command.option("--size", inputs.size, "size of the frames, where a file to read does not say it")
        .takes("WIDTH,HEIGHT");
    command
        .option("--step", inputs.step,
                "node spacing in plane samples of the tables that are read from a tuning file or DNG "
                "(default: 64, or less where its nodes are closer)")
        .range(smallest_step, largest_step);
}

std::vector<LitTables> read_convert_inputs(const ConvertInputs& inputs, const RawOptions& raw,
                                           const std::string& format, bool lit) {
    check_words(inputs, raw);
    for (const std::string& path : inputs.paths) {
        const auto state = file_state(path);
        const auto file = read_shading_file(path, size_of(inputs));
        if (!file)
            continue;
        if (inputs.paths.size() != 1)
            usage_failure("{}: a tuning file or DNG is converted alone, not with {} other files", path,
                          inputs.paths.size() - 1);
        return tables_of_file(inputs, raw, *file, state, format, lit);
    }
    if (!lit && inputs.paths.size() != 1)
        usage_failure("{}: takes one table file, not {}: only rkisp1 and alsc hold several", format,
                      inputs.paths.size());
    if (lit && inputs.kelvin.empty())
        usage_failure("{}: needs the colour temperature of each table file: give --ct, as --ct 2856,5000",
                      format);
    std::vector<int> kelvin(inputs.paths.size());
    if (lit)
        kelvin = integer_list("--ct", inputs.kelvin, inputs.paths.size(), coldest, hottest);
    std::vector<LitTables> sets;
    for (size_t i = 0; i < inputs.paths.size(); ++i)
        sets.push_back({read_own(inputs, inputs.paths[i], raw), kelvin[i]});
    if (lit)
        check_temperatures(inputs, sets);
    return sets;
}

} // namespace zerklsc::tool
