// The file formats of raw frames. A new one is a source file with a `const RawFormat` and a line in
// io/raw_formats.cpp.
#pragma once

#include <string>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// What the user says about a raw file on the command line; 0 and empty where nothing is said.
struct RawHints {
    int width = 0;
    int height = 0;
    int bits = 0;
    bool big_endian = false;
};

struct RawFormat {
    const char* name;      // for messages, as "PGM"
    const char* extension; // of the files that are written in it, with its dot

    // Whether the file is of this format, by its first bytes, its extension and the hints.
    bool (*recognises)(const std::string& path, const std::string& bytes, const RawHints& hints);

    // Fills the frame except its name; throws a data failure that begins with `path`.
    RawFrame (*read)(const std::string& path, const std::string& bytes, const RawHints& hints);

    // The bytes of a file; null where the format is only read.
    std::string (*write)(const RawFrame& frame);
};

extern const RawFormat pgm_format;
extern const RawFormat headerless_format;

// The formats in words: "PGM, headerless".
std::string raw_format_names();

// Reads a frame of any format. It has an even size, and no sample above its full scale.
RawFrame read_raw_frame(const std::string& path, const RawHints& hints);

// The bytes of a file called `path`: the format that its extension names, else that of `like`.
std::string encode_raw_frame(const std::string& path, const RawFrame& frame, const std::string& like);

} // namespace zerklsc::tool
