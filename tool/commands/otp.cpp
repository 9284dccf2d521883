// zerklsc otp: streams for a module's one-time-programmable memory
#include <algorithm>
#include <memory>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/option_values.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/otp_stream.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "terminal.h"
#include "zerklsc.h"

namespace zerklsc::tool {
namespace {

// Rounding alone takes up to 1/128 (mode 0) or 1/32 (mode 1) off a gain of 1.0; a loss beyond that is a
// fault.
constexpr std::array<double, 2> usual_max_error{1.0, 4.0};

struct EncodeOptions {
    std::string tables, output, c_array;
    int mode = 0;
    double max_error = 0; // percent; 0: the usual one of the mode
    bool force = false;
};

struct DecodeOptions {
    std::string stream, output, like, pattern = "RGGB", black = "0";
    int width = 0, height = 0, step = 64;
};

struct CheckOptions {
    std::string stream, tables;
    double max_error = 0;
};

std::string c_array_of(const std::string& stream, const GainTables& tables, int mode) {
    std::string text = fmt::format(
        "/* Lens-shading stream: mode {}, tables of {} x {}, step {}, Bayer pattern {}. */\n"
        "static const unsigned char lsc_otp_stream[{}] = {{\n",
        mode, tables.table_width, tables.table_height, tables.step, name_of(tables.pattern), stream.size());
    constexpr size_t per_line = 12;
    for (size_t i = 0; i < stream.size(); i += per_line) {
        text += "   ";
        for (const char byte : stream.substr(i, per_line))
            text += fmt::format(" 0x{:02X},", static_cast<unsigned char>(byte));
        text += '\n';
    }
    return text + "};\n";
}

void add_loss(Report& report, const GainTables& tables, int mode, size_t size, const StreamLoss& loss) {
    report.print(fmt::format("mode {}, {} bytes for {} nodes, {} of them not stored\n", mode, size,
                             inner_nodes(tables), unstored_nodes(tables, mode)));
    std::vector<std::vector<std::string>> rows{{"channel", "saturated fields", "largest gain error"}};
    for (const Colour colour : all_colours) {
        const auto i = static_cast<size_t>(colour);
        rows.push_back(
            {name_of(colour), fmt::format("{}", loss.saturated[i]), percent(loss.largest_error[i])});
    }
    report.print(text_table(rows));
    report.add("mode", mode);
    report.add("stream_size", size);
    report.add("nodes", inner_nodes(tables));
    report.add("unstored_nodes", unstored_nodes(tables, mode));
    report.add("channels", json_of(loss));
}

// Why a stream loses more than rounding does, and what helps.
std::string reason_of(const GainTables& tables, int mode, const StreamLoss& loss) {
    if (decodes_wrong(tables))
        return fmt::format(
            "a grid of {} x {} nodes, odd by even, decodes wrong in its lower half: choose a step with "
            "another node count (zerklsc resample)",
            tables.table_width - 2 * ZERKLSC_BORDER, tables.table_height - 2 * ZERKLSC_BORDER);
    if (std::ranges::any_of(loss.saturated, [](int n) { return n > 0; }))
        return fmt::format("gains of neighbouring nodes differ by more than the fields of the stream hold: "
                           "{}choose a smaller step "
                           "(zerklsc resample) where the lens is that steep, or look at the capture for "
                           "dust, shadows and clipping",
                           mode == 0 ? "" : "use --mode 0, or ");
    if (unstored_nodes(tables, mode) > 0)
        return "the last nodes are not stored: use --mode 0, or choose a step with another node count";
    return "rounding alone loses that much: use --mode 0, or allow it with --max-error";
}

double limit_of(double max_error, int mode) {
    return max_error > 0 ? max_error : usual_max_error[static_cast<size_t>(mode)];
}

void run_encode(const EncodeOptions& options, Report& report) {
    keep_files_apart({options.tables}, {options.output, options.c_array});
    const GainTables tables = read_table_json(options.tables);
    const std::string stream = encode_stream(tables, options.mode);
    GainTables decoded = tables;
    decode_stream(stream, options.output, decoded);
    const StreamLoss loss = loss_of(tables, decoded, options.mode);
    add_loss(report, tables, options.mode, stream.size(), loss);
    const double limit = limit_of(options.max_error, options.mode);
    if (100 * loss.worst() > limit) {
        const std::string what =
            fmt::format("{}: the stream is off by {} at worst (limit {} %): {}", options.tables,
                        percent(loss.worst()), limit, reason_of(tables, options.mode, loss));
        if (!options.force)
            throw Failure(exit_limit, what + "; --force writes it all the same");
        warn(what);
    }
    OutputSet outputs;
    outputs.add(options.output, stream);
    if (!options.c_array.empty())
        outputs.add(options.c_array, c_array_of(stream, tables, options.mode));
    outputs.commit();
}

// Tables without gains, of the geometry that the options say.
GainTables described(const DecodeOptions& options) {
    if (!options.like.empty())
        return read_table_json(options.like);
    if (options.width == 0 || options.height == 0)
        usage_failure(
            "otp decode: the stream does not say its geometry: give --like TABLES, or --width and --height");
    check_even(options.width, options.height);
    GainTables tables;
    tables.raw_width = options.width;
    tables.raw_height = options.height;
    tables.step = options.step;
    tables.algorithm = ZERKLSC_ALGORITHM_ORVEL;
    tables.pattern = pattern_of_option(options.pattern);
    tables.black = black_level_of_option(options.black);
    tables.bits = 10;
    tables.set_table_size();
    return tables;
}

void run_decode(const DecodeOptions& options, Report& report) {
    keep_files_apart({options.stream, options.like}, {options.output});
    GainTables tables = described(options);
    decode_stream(read_file(options.stream), options.stream, tables);
    if (decodes_wrong(tables))
        warn(fmt::format("{}: a grid of {} x {} nodes, odd by even, decodes wrong in its lower half",
                         options.stream, tables.table_width - 2 * ZERKLSC_BORDER,
                         tables.table_height - 2 * ZERKLSC_BORDER));
    write_file(options.output, encode_table_json(tables));
    add_written_tables(report, options.output, tables);
}

void run_check(const CheckOptions& options, Report& report) {
    const GainTables tables = read_table_json(options.tables);
    const std::string stream = read_file(options.stream);
    GainTables decoded = tables;
    decode_stream(stream, options.stream, decoded);
    const int mode = stream.size() == stream_size(tables, 0) ? 0 : 1;
    const StreamLoss loss = loss_of(tables, decoded, mode);
    add_loss(report, tables, mode, stream.size(), loss);
    const double limit = limit_of(options.max_error, mode);
    const bool own = stream == encode_stream(tables, mode);
    if (100 * loss.worst() > limit)
        limit_failure("{}: differs from {} by {} at worst (limit {} %): {}", options.stream, options.tables,
                      percent(loss.worst()), limit,
                      own ? reason_of(tables, mode, loss) : "it is not the stream of these tables");
    if (!own)
        warn(fmt::format("{}: is not the stream of {}, but as close as the limit of {} % asks",
                         options.stream, options.tables, limit));
}

void add_encode(Command otp) {
    auto options = std::make_shared<EncodeOptions>();
    Command command =
        otp.subcommand("encode", "Pack tables into a stream, decode it again and report the loss");
    command.option("tables", options->tables, "table file of zerklsc calibrate").required().takes("FILE");
    command.option("-o,--output", options->output, "stream to write, bare bytes").required().takes("FILE");
    command.option("--mode", options->mode, "0: 24 bits per node, 1: 14 bits per node")
        .range(lowest_precision_mode, highest_precision_mode)
        .show_default();
    command.option("--c-array", options->c_array, "also write the stream as a C array").takes("FILE");
    command
        .option("--max-error", options->max_error,
                "refuse a larger gain error, percent (mode 0: 1, mode 1: 4)")
        .range(0.001, 1000.0);
    command.flag("--force", options->force, "write a stream of a larger error all the same");
    command.footer("Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc otp encode tables.json -o stream.bin --c-array stream.h");
    command.action([options](Report& report) { run_encode(*options, report); });
}

void add_decode(Command otp) {
    auto options = std::make_shared<DecodeOptions>();
    Command command = otp.subcommand("decode", "Unpack a stream into tables");
    command.option("stream", options->stream, "stream of zerklsc otp encode").required().takes("FILE");
    command.option("-o,--output", options->output, "table file to write (JSON)").required().takes("FILE");
    Option like = command.option("--like", options->like, "table file of the same geometry").takes("FILE");
    command.option("--width", options->width, "frame width in pixels").range(2, largest_side).excludes(like);
    command.option("--height", options->height, "frame height in pixels")
        .range(2, largest_side)
        .excludes(like);
    command.option("--step", options->step, "node spacing in plane samples")
        .range(smallest_step, largest_step)
        .show_default()
        .excludes(like);
    command.option("--pattern", options->pattern, "Bayer pattern")
        .takes("{RGGB,GRBG,GBRG,BGGR}")
        .show_default()
        .excludes(like);
    command.option("--black-level", options->black, "black level of 10-bit captures, for the table file")
        .show_default()
        .excludes(like);
    command.footer("The mode follows from the length of the stream.\n\n"
                   "Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc otp encode tables.json -o stream.bin\n"
                   "  zerklsc otp decode stream.bin --like tables.json -o decoded.json");
    command.action([options](Report& report) { run_decode(*options, report); });
}

void add_otp_check(Command otp) {
    auto options = std::make_shared<CheckOptions>();
    Command command = otp.subcommand("check", "Compare what a stream decodes to with its tables");
    command.option("stream", options->stream, "stream of zerklsc otp encode").required().takes("FILE");
    command.option("--tables", options->tables, "the tables that it was made from").required().takes("FILE");
    command
        .option("--max-error", options->max_error,
                "exit with 1 at a larger gain error, percent (as in encode)")
        .range(0.001, 1000.0);
    command.footer("Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc otp encode tables.json --mode 1 --max-error 5 -o stream.bin\n"
                   "  zerklsc otp check stream.bin --tables tables.json --max-error 5");
    command.action([options](Report& report) { run_check(*options, report); });
}

} // namespace

void add_otp(Command app) {
    Command otp = app.subcommand("otp", "Streams for a module's one-time-programmable memory");
    otp.require_subcommand();
    add_encode(otp);
    add_decode(otp);
    add_otp_check(otp);
    otp.footer("Example:\n"
               "  zerklsc simulate -o flat.pgm\n"
               "  zerklsc calibrate flat.pgm -o tables.json\n"
               "  zerklsc otp encode tables.json -o stream.bin\n"
               "  zerklsc otp check stream.bin --tables tables.json");
}

} // namespace zerklsc::tool
