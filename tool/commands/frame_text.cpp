// describe, add_frame, text_of, add_written_tables
#include "commands/frame_text.h"

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

void add_written_tables(Report& report, const std::string& path, const GainTables& tables) {
    report.print(fmt::format("{}: tables of {} x {} for frames of {} x {}, step {}\n",
                             one_line(output_name(path)), tables.table_width, tables.table_height,
                             tables.raw_width, tables.raw_height, tables.step));
    report.add("output", path);
    report.add("size", JsonValue::array({tables.raw_width, tables.raw_height}));
    report.add("step", tables.step);
    report.add("table_size", JsonValue::array({tables.table_width, tables.table_height}));
}

} // namespace zerklsc::tool
