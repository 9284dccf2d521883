// zerklsc convert: gain tables in the formats of camera stacks and of other programs
#include <algorithm>
#include <array>
#include <iterator>
#include <memory>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "commands.h"
#include "commands/convert_inputs.h"
#include "commands/frame_text.h"
#include "commands/number_list.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "convert/dng.h"
#include "convert/table_formats.h"
#include "failure.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/table_text.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct ConvertOptions {
    ConvertInputs inputs;
    std::string output, format, grid, into;
    bool replace = false;
    RawOptions raw;
};

// What a format is called, the extension that means it, and its grid where it has one of its own.
struct Format {
    const char* name;
    const char* extension; // null where several formats share it
    const char* grid;      // null where the tables keep theirs
};

constexpr std::array<Format, 10> formats{{{"json", ".json", nullptr},
                                          {"rkisp1", ".yaml", nullptr},
                                          {"rkisp1-polynomial", nullptr, nullptr},
                                          {"alsc", nullptr, "32,32"},
                                          {"android", nullptr, "17,13"},
                                          {"dng", ".dng", nullptr},
                                          {"c", ".h", nullptr},
                                          {"csv", ".csv", nullptr},
                                          {"npy", ".npy", nullptr},
                                          {"text", ".txt", nullptr}}};

std::string format_names(const char* separator) {
    std::vector<std::string> names;
    names.reserve(formats.size());
    for (const Format& format : formats)
        names.emplace_back(format.name);
    return fmt::format("{}", fmt::join(names, separator));
}

const Format& format_of(const ConvertOptions& options) {
    const std::string extension = extension_of(options.output);
    for (const Format& format : formats)
        if (options.format.empty() ? format.extension != nullptr && extension == format.extension
                                   : options.format == format.name)
            return format;
    if (options.format.empty())
        usage_failure("{}: its extension does not say the format: give --to {}", options.output,
                      format_names(", "));
    usage_failure("--to: {} is not known: expected {}", options.format, format_names(", "));
}

bool is(const Format& format, std::string_view name) {
    return format.name == name;
}

std::vector<int> grid_of(const ConvertOptions& options, const Format& format) {
    if (format.grid == nullptr && !options.grid.empty())
        usage_failure("--grid: {} has a grid that cannot be chosen: leave it away", format.name);
    if (format.grid == nullptr)
        return {0, 0};
    return integer_list("--grid", options.grid.empty() ? format.grid : options.grid, 2, 2, 256);
}

std::string encode_frame(const ConvertOptions& options, const GainTables& tables) {
    if (!options.into.empty() && !options.raw.path.empty())
        usage_failure("--into and --raw: the frame is that of one of them: give only one");
    if (!options.into.empty())
        return insert_gain_maps(options.into, tables, input_name(options.inputs.paths[0]), options.replace);
    if (options.raw.path.empty())
        usage_failure("dng: needs the frame that the maps correct: give --raw FRAME, or --into DNG");
    const RawFrame frame = read_raw_for(options.raw, tables, input_name(options.inputs.paths[0]));
    if (frame.width != tables.raw_width || frame.height != tables.raw_height)
        data_failure("{}: is for frames of {} x {}, but {} is {} x {}: resample it first",
                     input_name(options.inputs.paths[0]), tables.raw_width, tables.raw_height, frame.name,
                     frame.width, frame.height);
    return encode_dng(frame, tables);
}

std::string encode(const ConvertOptions& options, const Format& format, const std::vector<LitTables>& sets,
                   Losses& losses) {
    const GainTables& tables = sets.front().tables;
    const std::vector<int> grid = grid_of(options, format);
    if (is(format, "json"))
        return encode_table_json(tables);
    if (is(format, "rkisp1"))
        return encode_rkisp1(sets, losses);
    if (is(format, "rkisp1-polynomial"))
        return encode_rkisp1_polynomial(sets, losses);
    if (is(format, "alsc"))
        return encode_alsc(sets, grid[0], grid[1], losses);
    if (is(format, "android"))
        return encode_android(tables, grid[0], grid[1], losses);
    if (is(format, "dng"))
        return encode_frame(options, tables);
    if (is(format, "c"))
        return encode_c_array(tables);
    if (is(format, "csv"))
        return encode_csv(tables);
    return is(format, "npy") ? encode_npy(tables) : encode_table_text(tables);
}

void run(const ConvertOptions& options, Report& report) {
    std::vector<std::string> inputs = options.inputs.paths;
    inputs.push_back(options.raw.path);
    inputs.push_back(options.into);
    keep_files_apart(inputs, {options.output});
    const Format& format = format_of(options);
    if (!options.into.empty() && !is(format, "dng"))
        usage_failure("--into: {} is not written into a DNG: leave it away, or give --to dng", format.name);
    const bool lit = is(format, "rkisp1") || is(format, "rkisp1-polynomial") || is(format, "alsc");
    const std::vector<LitTables> sets = read_convert_inputs(options.inputs, options.raw, format.name, lit);
    Losses losses;
    const std::string bytes = encode(options, format, sets, losses);
    for (const std::string& loss : losses)
        warn(fmt::format("{}: {}", output_name(options.output), loss));
    write_file(options.output, bytes);
    if (is(format, "json"))
        add_written_tables(report, options.output, sets.front().tables);
    else
        report.add("output", options.output);
    report.add("format", format.name);
    report.add("losses", JsonValue::list(losses));
    std::vector<std::string> names;
    std::ranges::transform(options.inputs.paths, std::back_inserter(names), input_name);
    if (!is(format, "json"))
        report.print(fmt::format("{}: {} of {}\n", one_line(output_name(options.output)), format.name,
                                 one_line(fmt::format("{}", fmt::join(names, ", ")))));
}

} // namespace

void add_convert(Command app) {
    auto options = std::make_shared<ConvertOptions>();
    Command command = app.subcommand("convert", "Carry tables into the format of a camera stack, and back");
    add_convert_inputs(command, options->inputs);
    command.option("-o,--output", options->output, "file to write").required().takes("FILE");
    command.option("--to", options->format, "format of the output (default: by its extension)")
        .takes("{" + format_names(",") + "}");
    command.option("--grid", options->grid, "points of the target (alsc: 32,32; android: 17,13)")
        .takes("COLUMNS,ROWS");
    const Option into = command
                            .option("--into", options->into,
                                    "DNG to put the gain maps into a copy of: all else keeps its bytes (dng)")
                            .takes("FILE");
    command.flag("--replace", options->replace, "give up the OpcodeList2 that the DNG has").needs(into);
    add_raw_options(command, options->raw, "--raw");
    command.footer(
        "rkisp1 is a part of a libcamera tuning file (rkisp1-polynomial: fitted, radial), alsc one of a "
        "Raspberry\nPi tuning file. dng writes the frame that --raw names, or a copy of the DNG that --into "
        "names, with the\ntables as gain maps. c, csv, npy and text hold the tables as they are. A tuning "
        "file or a DNG with gain\nmaps becomes a table file (json) again, or another of these.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json\n"
        "  zerklsc convert tables.json --ct 5000 -o tuning.yaml\n"
        "  zerklsc convert tables.json --raw flat.pgm -o flat.dng\n"
        "  zerklsc convert flat.dng -o back.json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
