// describe, add_frame, text_of, json_of, json_of_colour_shading, add_written_tables, text_table, percent,
// rounded
#include "commands/frame_text.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "io/output_set.h"
#include "terminal.h"

namespace zerklsc::tool {

std::string describe(const RawFrame& frame) {
    return fmt::format("{}: {} x {}, {}, {} bits, black level {}\n", one_line(frame.name), frame.width,
                       frame.height, name_of(*frame.pattern), frame.bits, text_of(*frame.black));
}

void add_frame(Report& report, const RawFrame& frame) {
    report.add("frame", frame.name);
    report.add("size", JsonValue::array({frame.width, frame.height}));
    report.add("bayer_pattern", name_of(*frame.pattern));
    report.add("bit_depth", frame.bits);
    report.add("black_level", JsonValue::list(*frame.black));
    report.add("white_level", frame.white_level());
}

std::string text_of(const Deviation& deviation) {
    return fmt::format("{:+.2f} % at {},{}", 100 * deviation.fraction, deviation.x, deviation.y);
}

JsonValue json_of(const Deviation& deviation) {
    return JsonValue::object(
        {{"deviation", rounded(deviation.fraction)}, {"at", JsonValue::array({deviation.x, deviation.y})}});
}

JsonValue json_of(Colour colour, const PlaneLevels& levels) {
    return JsonValue::object({{"colour", name_of(colour)},
                              {"mean", rounded(levels.mean)},
                              {"centre", rounded(levels.centre())},
                              {"corner_to_centre", rounded(levels.corner_to_centre())},
                              {"flatness", rounded(levels.flatness())},
                              {"worst_block", json_of(levels.worst())}});
}

JsonValue json_of_colour_shading(const FrameLevels& levels, BayerPattern pattern) {
    return JsonValue::object({{"r_to_g", json_of(colour_shading(levels, pattern, Colour::r))},
                              {"b_to_g", json_of(colour_shading(levels, pattern, Colour::b))}});
}

JsonValue json_of(const StreamLoss& loss) {
    JsonValue channels = JsonValue::array();
    for (const Colour colour : all_colours) {
        const auto i = static_cast<size_t>(colour);
        channels.add(JsonValue::object({{"colour", name_of(colour)},
                                        {"saturated_fields", loss.saturated[i]},
                                        {"largest_gain_error", rounded(loss.largest_error[i])}}));
    }
    return channels;
}

void add_written_tables(Report& report, const std::string& path, const GainTables& tables) {
    report.print(fmt::format("{}: tables of {} x {} for frames of {} x {}, step {}\n",
                             one_line(output_name(path)), tables.table_width, tables.table_height,
                             tables.raw_width, tables.raw_height, tables.step));
    report.add("output", path);
    report.add("size", JsonValue::array({tables.raw_width, tables.raw_height}));
    report.add("step", tables.step);
    report.add("table_size", JsonValue::array({tables.table_width, tables.table_height}));
}

std::string text_table(const std::vector<std::vector<std::string>>& rows) {
    std::vector<size_t> widths(rows.front().size());
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    std::string text;
    for (const auto& row : rows) {
        text += fmt::format("{:<{}}", row[0], widths[0]);
        for (size_t i = 1; i < row.size(); ++i)
            text += fmt::format("  {:>{}}", row[i], widths[i]);
        text += '\n';
    }
    return text;
}

std::string percent(double fraction) {
    return fmt::format("{:.2f} %", 100 * fraction);
}

double rounded(double value) {
    return std::round(value * 1e4) / 1e4;
}

} // namespace zerklsc::tool
