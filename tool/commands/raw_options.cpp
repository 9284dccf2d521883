// add_raw_description_options, add_raw_options, read_raw_and_description, read_raw, read_raw_for
#include "commands/raw_options.h"

#include <utility>

#include <fmt/format.h>

#include "failure.h"
#include "io/input_file.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

std::optional<Packing> packing_from(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    return text == "raw10" ? Packing::raw10 : text == "raw12" ? Packing::raw12 : Packing::words;
}

void add_headerless_options(Command command, RawOptions& options) {
    RawHints& hints = options.hints;
    command.option("--width", hints.width, "width of a headerless frame").range(1, largest_side);
    command.option("--height", hints.height, "height of a headerless frame").range(1, largest_side);
    command
        .option("--packing", options.packing,
                "how a headerless frame is packed (from the extension, else words)")
        .one_of({"words", "raw10", "raw12"});
    command.option("--stride", hints.stride, "bytes from row to row of a headerless frame, padding included")
        .range(1, 1 << 20);
    command.option("--offset", hints.offset, "bytes before the first row of a headerless frame")
        .range(0, 1 << 30);
    command.option("--endian", options.endian, "byte order of headerless words")
        .one_of({"little", "big"})
        .show_default();
}

// Reads the frame, with a warning for what is overridden.
RawFrame read_remarking(const RawOptions& options) {
    RawReading reading = read_raw_and_description(options);
    for (const std::string& remark : overridden(reading))
        warn(fmt::format("{}: options override what the file says: {}", input_name(options.path), remark));
    return std::move(reading.frame);
}

// The tables' black level at the depth of the frame.
BlackLevel black_level_at(const GainTables& tables, int bits) {
    BlackLevel black = tables.black;
    for (int& level : black)
        level = bits >= tables.bits ? level << (bits - tables.bits) : level >> (tables.bits - bits);
    return black;
}

} // namespace

void add_raw_description_options(Command command, RawOptions& options) {
    command.section("What the frame does not say, or says wrong");
    add_headerless_options(command, options);
    command
        .option("--bits", options.hints.bits,
                "bit depth of the samples (from the file; headerless words: 10)")
        .range(8, 16);
    command
        .option("--align", options.alignment,
                "right, or left where the samples fill the high bits of their words")
        .one_of({"left", "right"})
        .show_default();
    command.option("--pattern", options.pattern, "Bayer pattern (from the file)")
        .takes("{RGGB,GRBG,GBRG,BGGR}");
    command
        .option("--black-level", options.black,
                "black level of all planes, or four levels by plane as 64,64,65,64 (from the file)")
        .takes("LEVELS");
    command
        .option("--white-level", options.white,
                "level at which samples are clipped (from the file, else full scale)")
        .range(1, 65535);
    command.end_section();
}

void add_raw_options(Command command, RawOptions& options, const char* argument) {
    Option path = command.option(argument, options.path, "raw frame: " + raw_format_names());
    path.takes("FILE");
    if (argument[0] != '-')
        path.required();
    add_raw_description_options(command, options);
}

void add_raw_options(Command command, RawOptions& options, std::vector<std::string>& paths,
                     const char* argument) {
    command.option(argument, paths, "raw frame, or several of one module: " + raw_format_names())
        .required()
        .takes("FILE");
    add_raw_description_options(command, options);
}

RawReading read_raw_and_description(const RawOptions& options) {
    RawHints hints = options.hints;
    hints.big_endian = options.endian == "big";
    hints.left_aligned = options.alignment == "left";
    hints.packing = packing_from(options.packing);
    if (!options.pattern.empty())
        hints.pattern = pattern_of_option(options.pattern);
    if (!options.black.empty())
        hints.black = black_level_of_option(options.black);
    if (options.white != 0)
        hints.white = options.white;
    if ((hints.width == 0) != (hints.height == 0))
        usage_failure("--width and --height: only one of them was given: a headerless frame needs both");
    return read_raw_frame(options.path, hints);
}

RawFrame read_raw(const RawOptions& options, UnknownBlack unknown) {
    RawFrame frame = read_remarking(options);
    if (!frame.pattern) {
        warn(fmt::format("{}: the Bayer pattern is not known: RGGB is taken (--pattern says another)",
                         frame.name));
        frame.pattern = BayerPattern::rggb;
    }
    if (!frame.black && unknown == UnknownBlack::refuse)
        data_failure(
            "{}: the black level is not known, and gains depend on it: give --black-level (0 where it has "
            "been taken off)",
            frame.name);
    if (!frame.black && unknown == UnknownBlack::take_0) {
        warn(fmt::format("{}: the black level is not known: 0 is taken (--black-level says another)",
                         frame.name));
        frame.black = BlackLevel{};
    }
    return frame;
}

RawFrame read_raw_for(const RawOptions& options, const GainTables& tables, const std::string& tables_path) {
    RawFrame frame = read_remarking(options);
    if (!frame.black)
        frame.black = black_level_at(tables, frame.bits);
    if (!frame.pattern)
        frame.pattern = tables.pattern;
    if (frame.pattern != tables.pattern)
        data_failure(
            "{}: is for the Bayer pattern {}, but {} is {}: take the tables of this module and orientation",
            tables_path, name_of(tables.pattern), frame.name, name_of(*frame.pattern));
    return frame;
}

} // namespace zerklsc::tool
