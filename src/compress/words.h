// Node words, laid out as node_fields.h says, to and from the bytes of a stream, fast.
#pragma once

#include <cstdint>

namespace zerklsc {

// Both take the nodes of a whole stream in mode 0 or 1, and leave those alone that mode 1 does not store.
// They are for processors with the low byte first.
void write_words(uint8_t* stream, const uint32_t* words, int64_t count, uint8_t mode);
void read_words(const uint8_t* stream, uint32_t* words, int64_t count, uint8_t mode);

} // namespace zerklsc
