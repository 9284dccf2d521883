// add_capture_options, add_averaging_options, check_words, read_flat_captures, recorded
#include "commands/flat_captures.h"

#include <numeric>

#include <fmt/format.h>

#include "failure.h"
#include "io/input_record.h"
#include "io/levels_json.h"

namespace zerklsc::tool {
namespace {

// Fewer captures have no middle that one of them could be far from.
constexpr size_t fewest_for_median = 3;

Averaging known_averaging(const std::string& name) {
    const auto averaging = averaging_from(name);
    if (!averaging)
        usage_failure("--average: {} is not known: expected mean, median or clipped-mean", name);
    return *averaging;
}

Averaging averaging_of(const CaptureOptions& options) {
    const Averaging averaging = known_averaging(options.average);
    if (averaging != Averaging::mean && options.flats.size() < fewest_for_median)
        usage_failure("--average: {} needs {} captures at least, and there {} {}", options.average,
                      fewest_for_median, options.flats.size() == 1 ? "is" : "are", options.flats.size());
    return averaging;
}

void check_counts(const CaptureOptions& options) {
    if (std::max(options.flats.size(), options.darks.size()) > largest_capture_count)
        usage_failure("calibrate: {} captures and {} dark frames: at most {} of each are held in memory",
                      options.flats.size(), options.darks.size(), largest_capture_count);
    if (!options.darks.empty() && !options.raw.black.empty())
        usage_failure("--dark: takes the place of --black-level: give one of them");
}

std::vector<RawFrame> read_all(const CaptureOptions& options, const std::vector<std::string>& paths,
                               UnknownBlack unknown) {
    std::vector<RawFrame> frames;
    for (const std::string& path : paths) {
        RawOptions raw = options.raw;
        raw.path = path;
        frames.push_back(read_raw(raw, unknown));
    }
    check_alike(frames);
    return frames;
}

// A data failure where the dark frame is none of this capture.
void check_dark(const RawDescription& dark, const DarkFrame& average, const RawFrame& flat) {
    if (dark.width != flat.width || dark.height != flat.height)
        data_failure("{}: is {} x {}, but {} is {} x {}: give a dark frame of the same module and mode",
                     dark.name, dark.width, dark.height, flat.name, flat.width, flat.height);
    if (dark.bits != flat.bits)
        data_failure("{}: has {} bits, but {} has {}: give a dark frame of the same module and mode",
                     dark.name, dark.bits, flat.name, flat.bits);
    const double light = std::accumulate(flat.samples.begin(), flat.samples.end(), 0.0)
                         / static_cast<double>(flat.samples.size());
    const auto means = average.means();
    const double level = std::accumulate(means.begin(), means.end(), 0.0) / 4;
    constexpr double most = 0.8;
    if (level >= most * light)
        data_failure(
            "{}: its mean level is {:.1f}, and that of {} is {:.1f}: a dark frame is captured with the "
            "lens covered, with the flat field's exposure, gain and temperature",
            dark.name, level, flat.name, light);
}

void add_dark(Report& report, const CaptureOptions& options, const DarkFrame& dark, BayerPattern pattern) {
    const auto means = dark.means();
    std::string levels;
    JsonValue list = JsonValue::array();
    for (size_t plane = 0; plane < means.size(); ++plane) {
        levels += fmt::format("{}{} {:.2f}", plane == 0 ? "" : ", ",
                              name_of(colour_of_plane(pattern, static_cast<int>(plane))), means[plane]);
        list.add(rounded(means[plane]));
    }
    report.print(fmt::format("dark level, by the {} of {} dark frame{}: {}\n", options.average,
                             options.darks.size(), options.darks.size() == 1 ? "" : "s", levels));
    report.add("dark_frames", JsonValue::list(options.darks));
    report.add("dark_level", std::move(list));
}

} // namespace

std::vector<std::string> CaptureOptions::paths() const {
    std::vector<std::string> all = flats;
    all.insert(all.end(), darks.begin(), darks.end());
    return all;
}

void add_capture_options(Command command, CaptureOptions& options) {
    add_raw_options(command, options.raw, options.flats, "flat");
    add_averaging_options(command, options);
}

void add_averaging_options(Command command, CaptureOptions& options) {
    command.option("--average", options.average, "how several captures, or dark frames, become one")
        .takes("{mean,median,clipped-mean}")
        .show_default();
    command
        .repeated("--dark", options.darks,
                  "a capture in the dark, which is subtracted instead of a black level; may be given again")
        .takes("FILE");
}

void check_words(const CaptureOptions& options) {
    known_averaging(options.average);
    if (!options.raw.pattern.empty())
        pattern_of_option(options.raw.pattern);
    if (!options.raw.black.empty())
        black_level_of_option(options.raw.black);
}

FlatCaptures read_flat_captures(const CaptureOptions& options, Report& report) {
    check_counts(options);
    FlatCaptures flats;
    flats.averaging = averaging_of(options);
    for (const std::string& path : options.paths())
        flats.files.push_back(file_state(path));
    if (options.darks.empty()) {
        flats.captures = read_all(options, options.flats, UnknownBlack::refuse);
        if (flats.captures.size() > 1)
            flats.averaged = average_of(flats.captures, flats.averaging);
        return flats;
    }
    std::vector<RawFrame> darks = read_all(options, options.darks, UnknownBlack::leave);
    const DarkFrame dark = dark_frame_of(darks, flats.averaging);
    const RawDescription first_dark = darks.front();
    darks = {};
    flats.captures = read_all(options, options.flats, UnknownBlack::leave);
    check_dark(first_dark, dark, flats.captures.front());
    add_dark(report, options, dark, *flats.captures.front().pattern);
    flats.averaged = average_of(flats.captures, flats.averaging, -1, &dark);
    for (RawFrame& capture : flats.captures)
        subtract_dark(capture, dark);
    return flats;
}

std::vector<TableInput> recorded(const CaptureOptions& options, const FlatCaptures& flats,
                                 const std::vector<Findings>& findings) {
    std::vector<TableInput> inputs;
    const std::vector<std::string> paths = options.paths();
    for (size_t i = 0; i < paths.size(); ++i) {
        const bool is_flat = i < options.flats.size();
        inputs.push_back(input_record(is_flat ? "flat field" : "dark frame", paths[i], flats.files[i]));
        if (is_flat)
            inputs.back().checks = findings[i];
    }
    return inputs;
}

} // namespace zerklsc::tool
