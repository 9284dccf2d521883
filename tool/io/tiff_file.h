// The directories of a TIFF file and the values of its tags, read where they stand.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "io/input_file.h"

namespace zerklsc::tool {

struct TiffEntry {
    uint16_t tag = 0, type = 0;
    uint32_t count = 0;
    uint64_t at = 0;       // of the entry itself
    uint64_t value_at = 0; // in the entry where the value has four bytes at most
    uint64_t bytes = 0;    // of the value; 0 where the type is unknown
};

struct TiffDirectory {
    uint64_t pointer_at = 0; // of the four bytes that say where it is
    uint64_t at = 0;
    std::vector<TiffEntry> entries;

    // Null where the directory has no such tag.
    const TiffEntry* find(uint16_t tag) const;
};

class TiffFile {
  public:
    // Takes all of a pipe. A data failure where it is no TIFF of 32-bit offsets.
    explicit TiffFile(InputFile& file);

    bool big_endian() const { return big_endian_; }
    const std::string& path() const { return file_.path(); }
    // The directories of the chain and those below them, as far as they are sound.
    std::vector<TiffDirectory> directories();

    // The values of a tag of whole, rational or floating numbers, at most `most` of them; empty for another
    // type.
    std::vector<double> numbers(const TiffEntry& entry, uint32_t most);
    std::string bytes(const TiffEntry& entry, uint64_t limit);
    // `size` bytes at `at`, in the file's order.
    uint64_t word(uint64_t at, size_t size);

  private:
    TiffDirectory directory(uint64_t pointer_at);

    InputFile& file_;
    bool big_endian_ = false;
};

// Whether these are the first bytes of a TIFF of 32-bit offsets.
bool begins_tiff(std::string_view head);

} // namespace zerklsc::tool
