// The file formats of raw frames. A new one is a source file with a `const RawFormat` and a line in
// io/raw_formats.cpp.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "imaging/raw_frame.h"
#include "io/byte_sink.h"
#include "io/input_file.h"

namespace zerklsc::tool {

// How the samples of a file without a header are stored.
enum class Packing { words, raw10, raw12 };

// What the user says about a raw file on the command line; 0 and empty where nothing is said.
struct RawHints {
    int width = 0;
    int height = 0;
    int bits = 0;
    bool big_endian = false;
    bool left_aligned = false; // samples fill the high bits of their words
    std::optional<Packing> packing;
    int stride = 0; // bytes from row to row
    int offset = 0; // bytes before the first row
    std::optional<BayerPattern> pattern;
    std::optional<BlackLevel> black;
    std::optional<int> white;
};

struct RawFormat {
    const char* name;      // for messages, as "PGM"
    const char* extension; // of the files that are written in it, with its dot

    // Whether the file is of this format, by its first bytes, its extension and the hints.
    bool (*recognises)(const InputFile& file, const RawHints& hints);

    // Fills the frame with what the file says, except its name; throws a failure that begins with the path.
    RawFrame (*read)(InputFile& file, const RawHints& hints);

    // Hands the bytes of a file to the sink, of a frame whose pattern and black level are known and that has
    // more than 8 bits; null where the format is only read.
    void (*write)(const RawFrame& frame, const ByteSink& sink);
};

extern const RawFormat pgm_format;
extern const RawFormat mipi_raw10_format;
extern const RawFormat mipi_raw12_format;
extern const RawFormat headerless_format;
extern const RawFormat png_mosaic_format;
extern const RawFormat tiff_mosaic_format;
extern const RawFormat camera_raw_format;

// A frame, and what the file itself says about it: the hints override that in the frame.
struct RawReading {
    RawFrame frame;
    RawDescription said;
};

// Reads a frame of any format. It has an even size, and no sample above its full scale.
RawReading read_raw_frame(const std::string& path, const RawHints& hints);

// What the file says and the frame does not keep to, as "bit depth 10 (12 is taken)".
std::vector<std::string> overridden(const RawReading& reading);

// Writes the bytes of a file called `path`: the format that its extension names, else that of `like`.
void write_raw_frame(const std::string& path, const RawFrame& frame, const std::string& like,
                     const ByteSink& sink);

// The names of the formats that are in, as "PGM, MIPI RAW10".
std::string raw_format_names();

} // namespace zerklsc::tool
