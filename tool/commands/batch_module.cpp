// path_in, with_name, line_of_fault, result_of
#include "commands/batch_module.h"

#include <algorithm>
#include <new>

#include <fmt/format.h>

#include "commands/otp_loss.h"
#include "failure.h"
#include "io/file_identity.h"
#include "io/findings_json.h"
#include "io/levels_json.h"
#include "io/otp_container.h"
#include "io/output_set.h"
#include "io/sha256.h"
#include "io/table_json.h"
#include "io/text_table.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

// Numbers by plane in the order of the colours.
template <class T, class Get>
ByColour<T> by_colour(BayerPattern pattern, const Get& get) {
    ByColour<T> values;
    for (const Colour colour : all_colours)
        values[static_cast<size_t>(colour)] = get(static_cast<size_t>(plane_of_colour(pattern, colour)));
    return values;
}

void add_input(ResultLine& result, const std::string& name, const std::string& path) {
    result.inputs.push_back({name, ""});
    try {
        result.inputs.back().sha256 = sha256_of_file(path);
    } catch (const Failure&) {
        // Why it cannot be read becomes the reason when the capture is read.
    }
}

void add_capture(ResultLine& result, const RawFrame& frame) {
    result.frame = {frame.width, frame.height, frame.bits, *frame.pattern, *frame.black};
    const FrameLevels levels = measure_planes(frame, *frame.black, usual_blocks(frame));
    result.numbers.flatness =
        by_colour<double>(*frame.pattern, [&](size_t plane) { return rounded(levels[plane].flatness()); });
    result.numbers.corner = by_colour<double>(
        *frame.pattern, [&](size_t plane) { return rounded(levels[plane].corner_to_centre()); });
}

void add_checks(ResultLine& result, const CheckedFlats& checked, BayerPattern pattern) {
    for (const Finding& finding : checked.all_findings()) {
        const double value = shortened(finding.value);
        result.checks.push_back({finding.name, finding.plane,
                                 std::isfinite(value) ? std::optional(value) : std::nullopt,
                                 finding.verdict});
    }
    if (checked.optical_centre)
        result.optical_centre = by_colour<std::array<double, 2>>(pattern, [&](size_t plane) {
            const auto& [x, y] = (*checked.optical_centre)[plane];
            return std::array{rounded(x), rounded(y)};
        });
}

void add_tables(ResultLine& result, const GainTables& tables, bool without_gains) {
    result.grid = {tables.algorithm,    tables.step,          tables.table_width,
                   tables.table_height, tables.filter_radius, tables.shading_percent};
    if (!without_gains)
        result.gains = by_colour<std::vector<uint16_t>>(tables.pattern,
                                                        [&](size_t plane) { return tables.gains[plane]; });
}

// The inputs are hashed before they are read, and for the tables again after.
void expect_same_inputs(ResultLine& result, const GainTables& tables) {
    for (size_t i = 0; i < result.inputs.size(); ++i) {
        std::string& before = result.inputs[i].sha256;
        const std::string& after = tables.inputs[i].sha256;
        if (!before.empty() && before != after)
            data_failure("{}: was written to while it was read: try again when it is finished",
                         result.inputs[i].name);
        before = after;
    }
}

// A limit of the module that is missed. The first one is the reason.
void fail(ResultLine& result, const std::string& reason) {
    if (result.verdict != ModuleVerdict::fail)
        result.reason = reason;
    result.verdict = ModuleVerdict::fail;
}

void judge_prediction(ResultLine& result, const Prediction& prediction, const GainTables& tables,
                      const ModuleOptions& options, const std::string& name) {
    result.numbers.predicted_flatness =
        by_colour<double>(tables.pattern, [&](size_t plane) { return rounded(prediction.planes[plane]); });
    const double worst = std::max(prediction.on_captures(), prediction.on_left_out);
    if (options.max_flatness > 0 && 100 * worst > options.max_flatness)
        fail(result, fmt::format("{}: corrected, it is {} off flat (limit {} %)", name, percent(worst),
                                 options.max_flatness));
    warn_about_prediction(name, tables, prediction);
}

// The stream, or nothing where it loses too much to be burned.
std::string pack(ResultLine& result, const GainTables& tables, const ModuleOptions& options,
                 const std::string& name) {
    check_stream(tables, options.otp_mode, name);
    std::string stream = encode_stream(tables, options.otp_mode);
    GainTables decoded = tables;
    decode_stream(stream, name, decoded);
    const StreamLoss loss = loss_of(tables, decoded, options.otp_mode);
    result.numbers.otp_bytes = static_cast<int64_t>(stream.size());
    result.numbers.otp_loss = rounded(loss.worst());
    const double limit = limit_of(options.max_error, options.otp_mode);
    if (100 * loss.worst() <= limit)
        return stream;
    fail(result, fmt::format("{}: the stream is off by {} at worst (limit {} %): {}", name,
                             percent(loss.worst()), limit, reason_of(tables, options.otp_mode, loss)));
    return "";
}

std::string container_of(const std::string& serial, const GainTables& tables, int mode,
                         const std::string& stream) {
    if (serial.size() > longest_serial)
        data_failure("its serial has {} characters, and a container holds {}: give no --streams",
                     serial.size(), longest_serial);
    return encode_otp_container({tables.pattern, mode, tables.raw_width, tables.raw_height,
                                 tables.table_width, tables.table_height, tables.step, serial, stream});
}

// What is to be written of a module once its verdict stands.
struct Files {
    std::string tables, container;
};

// A failure of an output is not the module's: the batch cannot go on.
class OutputFailure : public Failure {
  public:
    explicit OutputFailure(const Failure& failure) : Failure(exit_system, failure.what()) {}
};

void write_outputs(ResultLine& result, const ModuleOutputs& outputs, const Files& files) {
    OutputSet set;
    const auto add = [&](const std::string& directory, const char* extension, const std::string& bytes) {
        if (directory.empty() || bytes.empty())
            return;
        const std::string name = result.serial + extension;
        set.add(path_in(directory + "/", name), bytes);
        result.outputs.push_back({name, sha256_text(sha256_of(bytes))});
    };
    try {
        add(outputs.tables, ".json", files.tables);
        add(outputs.streams, ".otp", files.container);
        set.commit();
    } catch (const Failure& failure) {
        throw OutputFailure(failure);
    }
}

// From captures whose checks let them pass.
Files calibrate_module(ResultLine& result, FlatCaptures& flats, CheckedFlats& checked,
                       const ModuleOptions& options, const ModuleOutputs& outputs,
                       const CaptureOptions& captures) {
    const RawFrame& frame = flats.average();
    const CalibrationSettings settings = settings_for(options.method, frame);
    const GainTables tables = calibrate_flats(captures, flats, checked, settings);
    expect_same_inputs(result, tables);
    add_tables(result, tables, outputs.without_gains);
    warn_about_gains(frame.name, tables);
    Files files;
    try {
        judge_prediction(result, predict(flats, checked, tables, settings), tables, options, frame.name);
    } catch (const Failure& failure) {
        warn(failure.what());
    }
    try {
        const std::string stream = pack(result, tables, options, frame.name);
        if (!outputs.streams.empty() && !stream.empty())
            files.container = container_of(result.serial, tables, options.otp_mode, stream);
    } catch (const Failure& failure) {
        if (!outputs.streams.empty())
            throw;
        warn(failure.what());
    }
    if (!outputs.tables.empty())
        files.tables = encode_table_json(tables);
    return files;
}

CheckedFlats examine(ResultLine& result, const FlatCaptures& flats, const ModuleOptions& options) {
    const RawFrame& frame = flats.average();
    try {
        CheckedFlats checked = examine_flats(flats.captures, settings_for(options.method, frame),
                                             options.method.check, options.method.clip_limit);
        add_checks(result, checked, *frame.pattern);
        return checked;
    } catch (const Failure& failure) {
        // Small captures are judged by their exposure alone.
        CheckedFlats refused;
        refused.refusal = failure.what();
        return refused;
    }
}

Files go_its_way(ResultLine& result, const CaptureOptions& captures, const ModuleOptions& options,
                 const ModuleOutputs& outputs) {
    Report unused;
    FlatCaptures flats = read_flat_captures(captures, unused);
    add_capture(result, flats.average());
    CheckedFlats checked = examine(result, flats, options);
    if (!checked.refusal.empty()) {
        result.verdict = ModuleVerdict::refuse;
        result.reason = checked.refusal;
        return {};
    }
    result.verdict = ModuleVerdict::pass;
    return calibrate_module(result, flats, checked, options, outputs, captures);
}

// Warnings are what a module that passes is doubted for.
void doubt(ResultLine& result, const std::vector<std::string>& warnings) {
    if (result.verdict != ModuleVerdict::pass || warnings.empty())
        return;
    result.verdict = ModuleVerdict::warn;
    result.reason = warnings.front();
    if (warnings.size() > 1)
        result.reason += fmt::format("; and {} more", warnings.size() - 1);
}

} // namespace

std::string path_in(const std::string& folder, const std::string& file) {
    return file.starts_with('/') ? file : folder + file;
}

std::string with_name(std::string text, const std::string& path, const std::string& name) {
    for (size_t at = 0; (at = text.find(path, at)) != std::string::npos; at += name.size())
        text.replace(at, path.size(), name);
    return text;
}

ResultLine line_of_fault(const Module& module, const std::string& fault) {
    ResultLine result;
    result.serial = module.serial;
    result.preset = module.preset;
    result.illuminant = module.illuminant;
    result.verdict = ModuleVerdict::error;
    result.reason = fault;
    result.tool = ZERKLSC_VERSION;
    return result;
}

ResultLine result_of(const Module& module, const std::string& folder, const ModuleOptions& options,
                     const ModuleOutputs& outputs) {
    const WarningsApart apart;
    ResultLine result = line_of_fault(module, "");
    result.settings = settings_text(options, outputs);
    CaptureOptions captures = options.captures;
    for (const std::string& file : module.files) {
        captures.flats.push_back(path_in(folder, file));
        add_input(result, file, captures.flats.back());
    }
    for (const std::string& dark : captures.darks)
        add_input(result, dark, dark);
    try {
        const Files files = go_its_way(result, captures, options, outputs);
        doubt(result, apart.warnings());
        write_outputs(result, outputs, files);
    } catch (const OutputFailure&) {
        throw;
    } catch (const Failure& failure) {
        result.verdict = ModuleVerdict::error;
        result.reason = failure.what();
    } catch (const std::bad_alloc&) {
        result.verdict = ModuleVerdict::error;
        result.reason = "not enough memory for a frame of this size";
    }
    for (size_t i = 0; i < module.files.size(); ++i)
        result.reason = with_name(result.reason, captures.flats[i], module.files[i]);
    return result;
}

} // namespace zerklsc::tool
