// add_raw_options, read_raw, black_level_of
#include "commands/raw_options.h"

#include "failure.h"
#include "io/black_level_text.h"

namespace zerklsc::tool {
namespace {

constexpr int largest_side = 65534;

void check_black(const RawFrame& frame) {
    for (const int level : *frame.black)
        if (level >= frame.full_scale())
            data_failure("{}: a black level of {} leaves no range below the full scale of {}: give the right "
                         "--black-level or --bits",
                         frame.name, level, frame.full_scale());
}

} // namespace

void add_raw_options(Command command, RawOptions& options, const char* argument) {
    command.option(argument, options.path, "raw frame: 16-bit PGM, or headerless 16-bit samples").required();
    command.option("--width", options.hints.width, "width of a headerless frame").range(1, largest_side);
    command.option("--height", options.hints.height, "height of a headerless frame").range(1, largest_side);
    command.option("--endian", options.endian, "byte order of a headerless frame: little or big")
        .one_of({"little", "big"})
        .show_default();
    command
        .option("--bits", options.hints.bits,
                "bit depth of the samples (PGM: from its maxval; headerless: 10)")
        .range(9, 16);
    command.option("--pattern", options.pattern,
                   "Bayer pattern: RGGB, GRBG, GBRG or BGGR (from the PGM comment)");
    command.option(
        "--black-level", options.black,
        "black level of all planes, or four levels by plane as 64,64,65,64 (from the PGM comment)");
}

RawFrame read_raw(const RawOptions& options) {
    RawHints hints = options.hints;
    hints.big_endian = options.endian == "big";
    if ((hints.width == 0) != (hints.height == 0))
        usage_failure("--width and --height: only one of them was given: a headerless frame needs both");
    RawFrame frame = read_raw_frame(options.path, hints);
    if (!options.pattern.empty()) {
        frame.pattern = bayer_pattern_from(options.pattern);
        if (!frame.pattern)
            usage_failure("--pattern: {} is not known: expected RGGB, GRBG, GBRG or BGGR", options.pattern);
    }
    if (!options.black.empty()) {
        frame.black = black_level_from(options.black);
        if (!frame.black)
            usage_failure(
                "--black-level: {} is not a level from 0 to 65535, nor four of them with commas between",
                options.black);
    }
    if (frame.black)
        check_black(frame);
    return frame;
}

BlackLevel black_level_of(const RawFrame& frame, const BlackLevel& otherwise) {
    return frame.black ? *frame.black : otherwise;
}

} // namespace zerklsc::tool
