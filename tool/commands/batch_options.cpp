// add_module_options, check_words, settings_text
#include "commands/batch_module.h"
#include "commands/option_values.h"
#include "imaging/otp_stream.h"
#include "io/sha256.h"

namespace zerklsc::tool {
namespace {

JsonValue values_of(const RawOptions& raw) {
    const RawHints& hints = raw.hints;
    return JsonValue::array({hints.width, hints.height, hints.bits, hints.stride, hints.offset, raw.packing,
                             raw.endian, raw.alignment, raw.pattern, raw.black, raw.white});
}

JsonValue values_of(const MethodOptions& method) {
    const CalibrationSettings& settings = method.settings;
    return JsonValue::array({algorithm_from(method.algorithm), settings.step, settings.radius,
                             settings.shading_percent, settings.max_memory, method.clip_limit,
                             JsonValue::list(method.check.limits), method.check.force,
                             method.check.keep_outliers});
}

} // namespace

void add_module_options(Command command, ModuleOptions& options) {
    add_raw_description_options(command, options.captures.raw);
    add_averaging_options(command, options.captures);
    add_method_options(command, options.method);
    command.option("--mode", options.otp_mode, "of the OTP stream, 0: 24 bits per node, 1: 14 bits per node")
        .range(lowest_precision_mode, highest_precision_mode)
        .show_default();
    command
        .option("--max-error", options.max_error,
                "fail a module whose OTP stream has a larger gain error, percent (mode 0: 1, mode 1: 4)")
        .range(0.001, 1000.0);
    command
        .option("--max-flatness", options.max_flatness,
                "fail a module that is less flat after correction, percent")
        .range(0.001, 1000.0);
}

void check_words(const ModuleOptions& options) {
    algorithm_from(options.method.algorithm);
    limits_of(options.method.check);
    check_words(options.captures);
}

std::string settings_text(const ModuleOptions& options, const ModuleOutputs& outputs) {
    const JsonValue all =
        JsonValue::array({ZERKLSC_VERSION, values_of(options.captures.raw), options.captures.average,
                          JsonValue::list(options.captures.darks), values_of(options.method),
                          options.otp_mode, options.max_error, options.max_flatness, !outputs.tables.empty(),
                          !outputs.streams.empty(), outputs.without_gains});
    return sha256_text(sha256_of(all.line())).substr(0, 16);
}

} // namespace zerklsc::tool
