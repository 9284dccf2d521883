// store_data, load_data, zerklsc_stream_size
#include "compress/node_fields.h"
#include "zerklsc_driver.h"

namespace zerklsc {
namespace {

constexpr int64_t node_bytes = 3;  // mode 0, of one node
constexpr int64_t group_bytes = 7; // mode 1, of a group
constexpr int64_t group_nodes = 4; // may span the end of a row

// The planes of a stream; T is const for packing.
template <class T>
using Planes = ByColour<T*>;

// The node word of node i of the planes.
uint32_t pack(const NodeLayout& layout, const Planes<const int16_t>& planes, int64_t i) {
    uint32_t word = 0;
    for (int c = 0; c < colour_count; ++c)
        word |= to_field(planes.of[c][i], layout.of[c]);
    return word;
}

// Node i of the planes from a node word.
void unpack(const NodeLayout& layout, uint32_t word, const Planes<int16_t>& planes, int64_t i) {
    for (int c = 0; c < colour_count; ++c)
        planes.of[c][i] = from_field(word, layout.of[c]);
}

uint8_t byte(uint32_t word, int n) {
    return static_cast<uint8_t>(word >> (8 * n));
}

void store_nodes(uint8_t* out, const Planes<const int16_t>& planes, int64_t count) {
    for (int64_t i = 0; i < count; ++i, out += node_bytes) {
        const uint32_t word = pack(layout_24_bit, planes, i);
        out[0] = byte(word, 0);
        out[1] = byte(word, 1);
        out[2] = byte(word, 2);
    }
}

void load_nodes(const uint8_t* in, const Planes<int16_t>& planes, int64_t count) {
    for (int64_t i = 0; i < count; ++i, in += node_bytes)
        unpack(layout_24_bit, in[0] | uint32_t{in[1]} << 8 | uint32_t{in[2]} << 16, planes, i);
}

// The first four bytes are the low bytes of the nodes. The six bits left of each of the first three nodes
// take a byte, whose two free bits hold two of the fourth's.
void store_groups(uint8_t* out, const Planes<const int16_t>& planes, int64_t groups) {
    for (int64_t i = 0; i < groups * group_nodes; i += group_nodes, out += group_bytes) {
        const uint32_t last = pack(layout_14_bit, planes, i + 3);
        const uint32_t last_high = last >> 8;
        for (int k = 0; k < 3; ++k) {
            const uint32_t word = pack(layout_14_bit, planes, i + k);
            out[k] = byte(word, 0);
            out[4 + k] = static_cast<uint8_t>(word >> 8 | (last_high >> (2 * k) & 3) << 6);
        }
        out[3] = byte(last, 0);
    }
}

void load_groups(const uint8_t* in, const Planes<int16_t>& planes, int64_t groups) {
    for (int64_t i = 0; i < groups * group_nodes; i += group_nodes, in += group_bytes) {
        uint32_t last_high = 0;
        for (int k = 0; k < 3; ++k) {
            unpack(layout_14_bit, in[k] | uint32_t{in[4 + k]} << 8, planes, i + k);
            last_high |= static_cast<uint32_t>(in[4 + k] >> 6) << (2 * k);
        }
        unpack(layout_14_bit, in[3] | last_high << 8, planes, i + 3);
    }
}

int64_t node_count(int32_t width, int32_t height) {
    return width < 1 || height < 1 ? 0 : int64_t{width} * height;
}

} // namespace
} // namespace zerklsc

int32_t store_data(uint8_t* stream, int16_t* a, int16_t* b, int16_t* c, int16_t* d, int32_t width,
                   int32_t height, uint8_t mode) {
    using namespace zerklsc;
    const int64_t count = node_count(width, height);
    if (mode == mode_24_bit)
        store_nodes(stream, {{a, b, c, d}}, count);
    else if (mode == mode_14_bit)
        // The nodes behind the last whole group are not stored: the stream has no short group.
        store_groups(stream, {{a, b, c, d}}, count / group_nodes);
    return 0;
}

int32_t load_data(uint8_t* stream, int16_t* a, int16_t* b, int16_t* c, int16_t* d, int32_t width,
                  int32_t height, uint8_t mode) {
    using namespace zerklsc;
    const int64_t count = node_count(width, height);
    if (mode == mode_24_bit)
        load_nodes(stream, {{a, b, c, d}}, count);
    else if (mode == mode_14_bit)
        load_groups(stream, {{a, b, c, d}}, count / group_nodes);
    return 0;
}

uint64_t zerklsc_stream_size(int32_t grid_width, int32_t grid_height, int32_t precision_mode) {
    using namespace zerklsc;
    constexpr int32_t border = 2 * ZERKLSC_BORDER;
    if (grid_width <= border || grid_height <= border)
        return 0;
    const auto count = static_cast<uint64_t>(node_count(grid_width - border, grid_height - border));
    if (precision_mode == ZERKLSC_PRECISION_24_BITS)
        return count * node_bytes;
    if (precision_mode == ZERKLSC_PRECISION_14_BITS)
        return count / group_nodes * group_bytes;
    return 0;
}
