// For the targets that read files with the tool's readers.
#pragma once

#include <string>

#include <zlib.h>

#include "failure.h"
#include "imaging/gain_tables.h"

namespace zerklsc::fuzz {

// What a target returns; `read` may refuse its file in words.
template <class Reader>
int read_or_refused(const Reader& read) {
    try {
        read();
    } catch (const tool::Failure&) {
        // As it should be.
    }
    return 0;
}

// The CRC-32 at the end of files that have one.
inline std::string checksum_of(const std::string& bytes) {
    const auto checksum = crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    std::string text;
    for (int shift = 0; shift < 32; shift += 8)
        text += static_cast<char>(checksum >> shift & 0xFF);
    return text;
}

// Tables of a geometry, without gains.
inline tool::GainTables empty_tables(int raw_width, int raw_height, int step,
                                     tool::BayerPattern pattern = tool::BayerPattern::rggb) {
    tool::GainTables tables;
    tables.raw_width = raw_width;
    tables.raw_height = raw_height;
    tables.step = step;
    tables.pattern = pattern;
    tables.set_table_size();
    return tables;
}

} // namespace zerklsc::fuzz
