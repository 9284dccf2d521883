// zerklsc otp check: whether a stream is what it should be
#include <memory>

#include <fmt/format.h>

#include "commands/otp.h"
#include "commands/otp_file.h"
#include "commands/otp_loss.h"
#include "failure.h"
#include "imaging/otp_stream.h"
#include "io/input_file.h"
#include "io/levels_json.h"
#include "io/table_json.h"
#include "io/text_table.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct OtpCheckOptions {
    std::string stream, tables;
    double max_error = 0;
};

// A container alone: its fields have been found right, so that only what its grid costs is left.
void check_alone(const OtpFile& file, Report& report) {
    GainTables decoded = described_by(*file.container);
    decode_stream(file.stream, file.name, decoded);
    std::vector<std::vector<std::string>> rows{{"channel", "largest gain"}};
    JsonValue list = JsonValue::array();
    for (const Colour colour : all_colours) {
        const double gain = decoded.largest_gain(plane_of_colour(decoded.pattern, colour));
        rows.push_back({name_of(colour), fmt::format("{:.3f}", gain)});
        list.add(JsonValue::object({{"colour", name_of(colour)}, {"largest_gain", rounded(gain)}}));
    }
    report.print(text_table(rows));
    report.add("channels", std::move(list));
    if (decodes_wrong(decoded))
        limit_failure("{}: {}", file.name, reason_of(decoded, file.container->mode, {}));
    if (const int unstored = unstored_nodes(decoded, file.container->mode); unstored > 0)
        warn(fmt::format("{}: {} of {} nodes are not stored: --tables says what that costs", file.name,
                         unstored, inner_nodes(decoded)));
}

void compare(const OtpFile& file, const OtpCheckOptions& options, Report& report) {
    const std::string tables_name = input_name(options.tables);
    const GainTables tables = read_table_json(options.tables);
    if (file.container)
        check_belongs(file, tables, tables_name);
    GainTables decoded = tables;
    decode_stream(file.stream, file.name, decoded);
    const int mode = file.stream.size() == stream_size(tables, 0) ? 0 : 1;
    const StreamLoss loss = loss_of(tables, decoded, mode);
    add_loss(report, tables, mode, file.stream.size(), loss);
    const double limit = limit_of(options.max_error, mode);
    const bool own = file.stream == encode_stream(tables, mode);
    if (100 * loss.worst() > limit)
        limit_failure("{}: differs from {} by {} at worst (limit {} %): {}", file.name, tables_name,
                      percent(loss.worst()), limit,
                      own ? reason_of(tables, mode, loss) : "it is not the stream of these tables");
    if (!own)
        warn(fmt::format("{}: is not the stream of {}, but as close as the limit of {} % asks", file.name,
                         tables_name, limit));
}

void run(const OtpCheckOptions& options, Report& report) {
    const OtpFile file = read_otp_file(options.stream);
    if (file.container)
        add_container(report, file);
    else if (options.tables.empty())
        data_failure("{}: magic: does not begin with the bytes 5A 4C D3 43 of an OTP container: for a bare "
                     "stream, give --tables",
                     file.name);
    if (options.tables.empty())
        check_alone(file, report);
    else
        compare(file, options, report);
}

} // namespace

void add_otp_check(Command otp) {
    auto options = std::make_shared<OtpCheckOptions>();
    Command command =
        otp.subcommand("check", "Find damage in a container, and compare a stream with its tables");
    command.option("stream", options->stream, "file of zerklsc otp encode: a container or a bare stream")
        .required()
        .takes("FILE");
    Option tables =
        command
            .option("--tables", options->tables, "the tables that it was made from; a bare stream needs them")
            .takes("FILE");
    command
        .option("--max-error", options->max_error,
                "exit with 1 at a larger gain error, percent (as in encode)")
        .range(0.001, 1000.0)
        .needs(tables);
    command.footer(
        "Of a container, the first thing that is wrong is named: magic, version, length, CRC-32, each\n"
        "field's range, then a grid that no stream holds (exit code 3). Exit code 1: the grid decodes\n"
        "wrong, or the stream differs from its tables by more than the largest error.\n\n"
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json\n"
        "  zerklsc otp encode tables.json --container --serial A0317 -o module.otp\n"
        "  zerklsc otp check module.otp\n"
        "  zerklsc otp check module.otp --tables tables.json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
