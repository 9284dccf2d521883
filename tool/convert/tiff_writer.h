// A little-endian TIFF of one image, the form of a DNG.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zerklsc::tool {

// Collects tags in any order; bytes() writes them sorted, each value of more than four bytes after the
// directory.
class TiffWriter {
  public:
    void add_bytes(uint16_t tag, const std::vector<uint8_t>& values);
    void add_text(uint16_t tag, const std::string& text);
    void add_shorts(uint16_t tag, const std::vector<uint16_t>& values);
    void add_longs(uint16_t tag, const std::vector<uint32_t>& values);
    // In ten-thousandths; signed ones are SRATIONAL.
    void add_rationals(uint16_t tag, const std::vector<double>& values, bool is_signed);
    // Bytes whose meaning the tag defines.
    void add_undefined(uint16_t tag, const std::string& bytes);

    // The file, with its samples as one strip of little-endian words at the end.
    std::string bytes(const std::vector<uint16_t>& samples);

  private:
    struct Entry {
        uint16_t type = 0;
        uint32_t count = 0;
        std::string value; // little-endian
    };
    std::map<uint16_t, Entry> entries_;
};

} // namespace zerklsc::tool
