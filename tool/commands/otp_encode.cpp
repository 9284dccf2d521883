// zerklsc otp encode: tables packed into a stream
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands/otp.h"
#include "commands/otp_loss.h"
#include "failure.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/otp_container.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/text_table.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct OtpEncodeOptions {
    std::string tables, output, c_array, serial;
    int mode = 0;
    double max_error = 0; // percent; 0: the usual one of the mode
    bool container = false, force = false;
};

std::string c_array_of(const std::string& bytes, const char* what, const GainTables& tables, int mode) {
    std::string text =
        fmt::format("/* Lens-shading {}: mode {}, tables of {} x {}, step {}, Bayer pattern {}. */\n"
                    "static const unsigned char lsc_otp_stream[{}] = {{\n",
                    what, mode, tables.table_width, tables.table_height, tables.step, name_of(tables.pattern),
                    bytes.size());
    constexpr size_t per_line = 12;
    for (size_t i = 0; i < bytes.size(); i += per_line) {
        text += "   ";
        for (const char byte : bytes.substr(i, per_line))
            text += fmt::format(" 0x{:02X},", static_cast<unsigned char>(byte));
        text += '\n';
    }
    return text + "};\n";
}

void check_serial(const std::string& serial) {
    if (serial.size() > longest_serial
        || !std::ranges::all_of(serial, [](char c) { return c >= ' ' && c <= '~'; }))
        usage_failure("--serial: {} is not at most {} characters of printable ASCII", serial, longest_serial);
}

void write_stream(const OtpEncodeOptions& options, const GainTables& tables, const std::string& stream,
                  Report& report) {
    const std::string bytes =
        options.container ? encode_otp_container({tables.pattern, options.mode, tables.raw_width,
                                                  tables.raw_height, tables.table_width, tables.table_height,
                                                  tables.step, options.serial, stream})
                          : stream;
    if (options.container) {
        report.print(
            fmt::format("{}: container of {} bytes\n", one_line(output_name(options.output)), bytes.size()));
        report.add("container_size", static_cast<uint64_t>(bytes.size()));
    }
    OutputSet outputs;
    outputs.add(options.output, bytes);
    if (!options.c_array.empty())
        outputs.add(options.c_array,
                    c_array_of(bytes, options.container ? "container" : "stream", tables, options.mode));
    outputs.commit();
}

void run(const OtpEncodeOptions& options, Report& report) {
    keep_files_apart({options.tables}, {options.output, options.c_array});
    check_serial(options.serial);
    const std::string name = input_name(options.tables);
    const GainTables tables = read_table_json(options.tables);
    check_stream(tables, options.mode, name);
    const std::string stream = encode_stream(tables, options.mode);
    GainTables decoded = tables;
    decode_stream(stream, name, decoded);
    const StreamLoss loss = loss_of(tables, decoded, options.mode);
    add_loss(report, tables, options.mode, stream.size(), loss);
    const double limit = limit_of(options.max_error, options.mode);
    if (100 * loss.worst() > limit) {
        const std::string what =
            fmt::format("{}: the stream is off by {} at worst (limit {} %): {}", name, percent(loss.worst()),
                        limit, reason_of(tables, options.mode, loss));
        if (!options.force)
            throw Failure(exit_limit, what + "; --force writes it all the same");
        warn(what);
    }
    write_stream(options, tables, stream, report);
}

} // namespace

void add_otp_encode(Command otp) {
    auto options = std::make_shared<OtpEncodeOptions>();
    Command command =
        otp.subcommand("encode", "Pack tables into a stream, decode it again and report the loss");
    command.option("tables", options->tables, "table file of zerklsc calibrate").required().takes("FILE");
    command
        .option("-o,--output", options->output,
                "file to write: the bare stream as it is burned, or a container")
        .required()
        .takes("FILE");
    command.option("--mode", options->mode, "0: 24 bits per node, 1: 14 bits per node")
        .range(lowest_precision_mode, highest_precision_mode)
        .show_default();
    Option container =
        command.flag("--container", options->container,
                     "put the stream into a container that says its geometry, the serial and a CRC-32");
    command
        .option("--serial", options->serial,
                fmt::format("serial of the module for the container, at most {} characters", longest_serial))
        .takes("SERIAL")
        .needs(container);
    command.option("--c-array", options->c_array, "also write the same bytes as a C array").takes("FILE");
    command
        .option("--max-error", options->max_error,
                "refuse a larger gain error, percent (mode 0: 1, mode 1: 4)")
        .range(0.001, 1000.0);
    command.flag("--force", options->force, "write a stream of a larger error all the same");
    command.footer("Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc otp encode tables.json -o stream.bin --c-array stream.h\n"
                   "  zerklsc otp encode tables.json --container --serial A0317 -o module.otp");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
