// zerklsc otp decode: a stream unpacked into tables
#include <memory>

#include <fmt/format.h>

#include "commands/frame_text.h"
#include "commands/option_values.h"
#include "commands/otp.h"
#include "commands/otp_file.h"
#include "failure.h"
#include "imaging/otp_stream.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/input_record.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

struct OtpDecodeOptions {
    std::string stream, output, like, pattern, black = "0";
    int width = 0, height = 0, step = 0;
};

constexpr int default_step = 64;
constexpr const char* default_pattern = "RGGB";

// Tables without gains, as the options describe those of a bare stream.
GainTables described_by(const OtpDecodeOptions& options) {
    if (options.width == 0 || options.height == 0)
        usage_failure(
            "otp decode: the stream does not say its geometry: give --like TABLES, or --width and --height");
    check_even(options.width, options.height);
    GainTables tables;
    tables.raw_width = options.width;
    tables.raw_height = options.height;
    tables.step = options.step == 0 ? default_step : options.step;
    tables.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    tables.pattern = pattern_of_option(options.pattern.empty() ? default_pattern : options.pattern);
    tables.bits = 10;
    tables.set_table_size();
    return tables;
}

GainTables described(const OtpDecodeOptions& options, const OtpFile& file) {
    if (!options.like.empty()) {
        GainTables tables = read_table_json(options.like);
        if (file.container)
            check_belongs(file, tables, input_name(options.like));
        return tables;
    }
    const bool described = options.width + options.height + options.step != 0 || !options.pattern.empty();
    if (file.container && described)
        usage_failure("{}: a container says its geometry: leave --width, --height, --step and --pattern away",
                      file.name);
    GainTables tables = file.container ? described_by(*file.container) : described_by(options);
    tables.black = black_level_of_option(options.black);
    return tables;
}

void run(const OtpDecodeOptions& options, Report& report) {
    keep_files_apart({options.stream, options.like}, {options.output});
    check_table_name(options.output);
    const auto state = file_state(options.stream);
    const OtpFile file = read_otp_file(options.stream);
    GainTables tables = described(options, file);
    decode_stream(file.stream, file.name, tables);
    if (file.container)
        add_container(report, file);
    if (decodes_wrong(tables))
        warn(fmt::format("{}: a grid of {} x {} nodes, odd by even, decodes wrong in its lower half",
                         file.name, tables.table_width - 2 * ZERKLSC_BORDER,
                         tables.table_height - 2 * ZERKLSC_BORDER));
    tables.inputs = {input_record("OTP file", options.stream, state)};
    write_file(options.output, encode_tables_for(options.output, tables));
    add_written_tables(report, options.output, tables);
}

} // namespace

void add_otp_decode(Command otp) {
    auto options = std::make_shared<OtpDecodeOptions>();
    Command command = otp.subcommand("decode", "Unpack a stream or container into tables");
    command.option("stream", options->stream, "file of zerklsc otp encode: a bare stream or a container")
        .required()
        .takes("FILE");
    command
        .option("-o,--output", options->output,
                "table file to write: JSON, or the gains alone as text (.txt)")
        .required()
        .takes("FILE");
    Option like = command.option("--like", options->like, "table file of the same geometry").takes("FILE");
    command.option("--width", options->width, "frame width in pixels").range(2, largest_side).excludes(like);
    command.option("--height", options->height, "frame height in pixels")
        .range(2, largest_side)
        .excludes(like);
    command
        .option("--step", options->step,
                fmt::format("node spacing in plane samples (default: {})", default_step))
        .range(smallest_step, largest_step)
        .excludes(like);
    command.option("--pattern", options->pattern, fmt::format("Bayer pattern (default: {})", default_pattern))
        .takes("{RGGB,GRBG,GBRG,BGGR}")
        .excludes(like);
    command.option("--black-level", options->black, "black level of 10-bit captures, for the table file")
        .takes("LEVELS")
        .show_default()
        .excludes(like);
    command.footer(
        "A container says its geometry. That of a bare stream comes from --like or from --width and\n"
        "--height, --step and --pattern; its mode follows from its length.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json\n"
        "  zerklsc otp encode tables.json -o stream.bin\n"
        "  zerklsc otp decode stream.bin --like tables.json -o decoded.json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
