// zerklsc info: what a raw file says, and what the commands would take
#include <fmt/format.h>

#include "commands.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "io/levels_json.h"
#include "io/text_table.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

// A dash where nothing is known.
std::string or_dash(const std::string& text) {
    return text.empty() ? std::string("-") : text;
}

std::vector<std::string> column_of(const RawDescription& about) {
    return {about.pattern ? std::string(name_of(*about.pattern)) : std::string("-"),
            about.bits != 0 ? std::to_string(about.bits) : std::string("-"),
            about.black ? text_of(*about.black) : std::string("-"),
            about.bits != 0 ? std::to_string(about.white_level()) : std::string("-"),
            or_dash(about.camera),
            or_dash(about.lens)};
}

std::vector<std::vector<std::string>> rows_of(const RawReading& reading) {
    constexpr std::array names{"Bayer pattern", "bit depth", "black level", "white level", "camera", "lens"};
    const auto said = column_of(reading.said);
    const auto taken = column_of(reading.frame);
    std::vector<std::vector<std::string>> rows{{"", "in the file", "taken"}};
    for (size_t i = 0; i < names.size(); ++i)
        rows.push_back({names[i], said[i], taken[i]});
    return rows;
}

JsonValue json_of(const RawDescription& about) {
    return JsonValue::object(
        {{"bit_depth", about.bits != 0 ? JsonValue(about.bits) : JsonValue::null()},
         {"bayer_pattern", about.pattern ? JsonValue(name_of(*about.pattern)) : JsonValue::null()},
         {"black_level", about.black ? JsonValue::list(*about.black) : JsonValue::null()},
         {"white_level", about.bits != 0 ? JsonValue(about.white_level()) : JsonValue::null()}});
}

void run(const RawOptions& options, Report& report) {
    const RawReading reading = read_raw_and_description(options);
    const auto& [frame, said] = reading;
    report.add("frame", frame.name);
    report.add("format", frame.format);
    report.add("size", JsonValue::array({frame.width, frame.height}));
    report.add("camera", frame.camera);
    report.add("lens", frame.lens);
    report.add("said", json_of(said));
    report.add("taken", json_of(frame));
    report.print(fmt::format("{}: {}, {} x {}\n{}", one_line(frame.name), frame.format, frame.width,
                             frame.height, text_table(rows_of(reading))));
}

} // namespace

void add_info(Command app) {
    auto options = std::make_shared<RawOptions>();
    Command command = app.subcommand("info", "Print what a raw file says, and what would be taken");
    add_raw_options(command, *options, "raw");
    command.footer("Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc info flat.pgm --black-level 60");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
