// Node words to and from the bytes of a stream, four bytes at a time. pack.cpp does the same byte by byte.
#include "compress/words.h"

#include <cstring>

#include "compress/precision_mode.h"

namespace zerklsc {
namespace {

uint32_t load32(const uint8_t* in) {
    uint32_t word;
    std::memcpy(&word, in, sizeof word);
    return word;
}

void store32(uint8_t* out, uint32_t word) {
    std::memcpy(out, &word, sizeof word);
}

// Four nodes are twelve bytes. The top byte of a word is 0 when written and not looked at when read.
void write_nodes(uint8_t* __restrict out, const uint32_t* __restrict words, int64_t count) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4, out += 12) {
        store32(out, words[i] | words[i + 1] << 24);
        store32(out + 4, words[i + 1] >> 8 | words[i + 2] << 16);
        store32(out + 8, words[i + 2] >> 16 | words[i + 3] << 8);
    }
    for (; i < count; ++i, out += 3)
        std::memcpy(out, &words[i], 3);
}

void read_nodes(const uint8_t* __restrict in, uint32_t* __restrict words, int64_t count) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4, in += 12) {
        words[i] = load32(in);
        words[i + 1] = load32(in + 3);
        words[i + 2] = load32(in + 6);
        words[i + 3] = load32(in + 8) >> 8;
    }
    for (; i < count; ++i, in += 3)
        std::memcpy(&words[i], in, 3);
}

// The seven bytes of a group as two words that share the fourth byte, the low one of the last node.
void write_groups(uint8_t* __restrict out, const uint32_t* __restrict words, int64_t count) {
    for (int64_t i = 0; i + 4 <= count; i += 4, out += 7) {
        const uint32_t x = words[i], y = words[i + 1], z = words[i + 2], last = words[i + 3];
        const uint32_t spread = (last & 0x300) << 6 | (last & 0xC00) << 12 | (last & 0x3000) << 18;
        store32(out, (x & 0xFF) | (y & 0xFF) << 8 | (z & 0xFF) << 16 | last << 24);
        store32(out + 3, (last & 0xFF) | (x & 0x3F00) | (y & 0x3F00) << 8 | (z & 0x3F00) << 16 | spread);
    }
}

void read_groups(const uint8_t* __restrict in, uint32_t* __restrict words, int64_t count) {
    for (int64_t i = 0; i + 4 <= count; i += 4, in += 7) {
        const uint32_t low = load32(in), high = load32(in + 3);
        words[i] = (low & 0xFF) | (high & 0x3F00);
        words[i + 1] = (low >> 8 & 0xFF) | (high >> 8 & 0x3F00);
        words[i + 2] = (low >> 16 & 0xFF) | (high >> 16 & 0x3F00);
        words[i + 3] = low >> 24 | (high >> 6 & 0x300) | (high >> 12 & 0xC00) | (high >> 18 & 0x3000);
    }
}

} // namespace

void write_words(uint8_t* stream, const uint32_t* words, int64_t count, uint8_t mode) {
    if (mode == mode_24_bit)
        write_nodes(stream, words, count);
    else
        write_groups(stream, words, count);
}

void read_words(const uint8_t* stream, uint32_t* words, int64_t count, uint8_t mode) {
    if (mode == mode_24_bit)
        read_nodes(stream, words, count);
    else
        read_groups(stream, words, count);
}

} // namespace zerklsc
