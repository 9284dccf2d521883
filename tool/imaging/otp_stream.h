// Gain tables as the packed stream of a module's one-time-programmable memory, and what is lost on the way.
#pragma once

#include <array>
#include <string>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// lsc_otp_info.precision_mode: 24 or 14 bits for a node of four tables.
constexpr int lowest_precision_mode = 0;
constexpr int highest_precision_mode = 1;

// The inner nodes of a table: those that a stream stores.
int64_t inner_nodes(const GainTables& tables);

// The exact length in bytes of a stream.
size_t stream_size(const GainTables& tables, int mode);

// Mode 1 stores whole groups of four nodes. The last nodes of the grid, this many, are not in the stream.
int unstored_nodes(const GainTables& tables, int mode);

// The stream's decoder is off in the lower half of grids of an odd number of columns and an even number of
// rows.
bool decodes_wrong(const GainTables& tables);

// A data failure where streams of this mode cannot hold tables of this size. `name` is for messages.
void check_stream(const GainTables& tables, int mode, const std::string& name);

std::string encode_stream(const GainTables& tables, int mode);

// Makes the gains of `tables`, whose geometry and pattern are those of the stream; the mode follows from its
// length, which is checked before anything is allocated. `name` is for messages.
void decode_stream(const std::string& stream, const std::string& name, GainTables& tables);

struct StreamLoss {
    std::array<int, 4> saturated{};        // fields of the stream too narrow for their value, by Colour
    std::array<double, 4> largest_error{}; // of an inner node, as a fraction of its gain, by Colour
    double worst() const;
};

// What a stream of `mode` loses of `tables`.
StreamLoss stream_loss(const GainTables& tables, int mode);

// What a stream of `mode` that decodes to `decoded` has lost of `tables`.
StreamLoss loss_of(const GainTables& tables, const GainTables& decoded, int mode);

} // namespace zerklsc::tool
