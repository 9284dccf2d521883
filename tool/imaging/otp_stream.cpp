// inner_nodes, stream_size, unstored_nodes, decodes_wrong, check_stream, encode_stream, decode_stream,
// StreamLoss, stream_loss, loss_of
#include "imaging/otp_stream.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "zerklsc_driver.h"

namespace zerklsc::tool {
namespace {

constexpr int group = 4; // nodes that mode 1 stores together

int inner_width(const GainTables& tables) {
    return tables.table_width - 2 * ZERKLSC_BORDER;
}

int inner_height(const GainTables& tables) {
    return tables.table_height - 2 * ZERKLSC_BORDER;
}

lsc_otp_info otp_info(GainTables& tables, std::string& stream, int mode) {
    lsc_otp_info info{};
    info.bayer_pattern = static_cast<uint8_t>(tables.pattern);
    info.grid_width = tables.table_width;
    info.grid_height = tables.table_height;
    std::ranges::copy(tables.pointers(), info.lsc_table);
    info.stream = reinterpret_cast<uint8_t*>(stream.data());
    info.precision_mode = static_cast<uint8_t>(mode);
    return info;
}

zerklsc_status stream_status(const GainTables& tables, int mode) {
    lsc_otp_info info{};
    info.bayer_pattern = static_cast<uint8_t>(tables.pattern);
    info.grid_width = tables.table_width;
    info.grid_height = tables.table_height;
    info.precision_mode = static_cast<uint8_t>(mode);
    return zerklsc_check_stream(&info);
}

int gain_at(const GainTables& tables, Colour colour, int node) {
    const int column = node % inner_width(tables) + ZERKLSC_BORDER;
    const int row = node / inner_width(tables) + ZERKLSC_BORDER;
    const auto plane = static_cast<size_t>(plane_of_colour(tables.pattern, colour));
    return tables.gains[plane][static_cast<size_t>(row * tables.table_width + column)];
}

// A gain in the units of a mode: 1/64 or 1/16.
int quantised(int gain, int mode) {
    return mode == 0 ? (gain + 8) >> 4 : (gain + 32) >> 6;
}

// The width in bits of the stream's field for a colour. Gb is the base; the others are stored as Gb less
// their own.
int field_bits(Colour colour, int mode) {
    constexpr std::array<std::array<int, 4>, 2> bits{{{7, 5, 6, 5}, {4, 3, 4, 3}}};
    return bits[static_cast<size_t>(mode)][static_cast<size_t>(colour)];
}

// The values of a colour's fields before they are limited to their widths.
std::vector<int16_t> field_values(const GainTables& tables, Colour colour, int mode) {
    const bool base = colour == Colour::gb;
    std::vector<int16_t> plane;
    for (int node = 0; node < inner_nodes(tables); ++node) {
        const int own = quantised(gain_at(tables, colour, node), mode);
        const int of_base = quantised(gain_at(tables, Colour::gb, node), mode);
        plane.push_back(static_cast<int16_t>(base ? own : of_base - own));
    }
    intra_cnl_diff(plane.data(), inner_width(tables), inner_height(tables), base ? 1 : 0,
                   static_cast<uint8_t>(mode));
    plane.resize(plane.size() - static_cast<size_t>(unstored_nodes(tables, mode)));
    return plane;
}

double largest_error(const GainTables& tables, const GainTables& decoded, Colour colour) {
    double largest = 0;
    for (int node = 0; node < inner_nodes(tables); ++node) {
        const int gain = gain_at(tables, colour, node);
        largest =
            std::max(largest, std::abs(gain_at(decoded, colour, node) - gain) / std::max(double(gain), 1.0));
    }
    return largest;
}

} // namespace

int64_t inner_nodes(const GainTables& tables) {
    return int64_t{inner_width(tables)} * inner_height(tables);
}

size_t stream_size(const GainTables& tables, int mode) {
    return static_cast<size_t>(zerklsc_stream_size(tables.table_width, tables.table_height, mode));
}

int unstored_nodes(const GainTables& tables, int mode) {
    return mode == 0 ? 0 : static_cast<int>(inner_nodes(tables) % group);
}

bool decodes_wrong(const GainTables& tables) {
    return stream_status(tables, 0) == ZERKLSC_STREAM_DARKENS;
}

void check_stream(const GainTables& tables, int mode, const std::string& name) {
    const zerklsc_status status = stream_status(tables, mode);
    if (ZERKLSC_REFUSED(status))
        data_failure("{}: grid: {} x {} in mode {} cannot be stored: {}", name, tables.table_width,
                     tables.table_height, mode, zerklsc_status_text(status));
}

std::string encode_stream(const GainTables& tables, int mode) {
    GainTables source = tables;
    std::string stream(stream_size(tables, mode), '\0');
    lsc_otp_info info = otp_info(source, stream, mode);
    if (lsc_compress(&info) != 0)
        system_failure("not enough memory to compress tables of {} x {}", tables.table_width,
                       tables.table_height);
    return stream;
}

void decode_stream(const std::string& stream, const std::string& name, GainTables& tables) {
    const int mode = stream.size() == stream_size(tables, 0) ? 0 : 1;
    if (stream.size() != stream_size(tables, mode))
        data_failure(
            "{}: holds {} bytes, but a stream of tables of {} x {} has {} (mode 0) or {} (mode 1): give the "
            "right geometry",
            name, stream.size(), tables.table_width, tables.table_height, stream_size(tables, 0),
            stream_size(tables, 1));
    tables.resize();
    std::string bytes = stream;
    lsc_otp_info info = otp_info(tables, bytes, mode);
    if (lsc_decompress(&info) != 0)
        system_failure("{}: not enough memory to decompress it", name);
}

double StreamLoss::worst() const {
    return std::ranges::max(largest_error);
}

StreamLoss loss_of(const GainTables& tables, const GainTables& decoded, int mode) {
    StreamLoss loss;
    for (const Colour colour : all_colours) {
        const auto i = static_cast<size_t>(colour);
        const int reach = 1 << (field_bits(colour, mode) - 1);
        const auto values = field_values(tables, colour, mode);
        loss.saturated[i] =
            static_cast<int>(std::ranges::count_if(values, [&](int v) { return v < -reach || v >= reach; }));
        loss.largest_error[i] = largest_error(tables, decoded, colour);
    }
    return loss;
}

StreamLoss stream_loss(const GainTables& tables, int mode) {
    GainTables decoded = tables;
    decode_stream(encode_stream(tables, mode), "the OTP stream", decoded);
    return loss_of(tables, decoded, mode);
}

} // namespace zerklsc::tool
