// Gain tables in the formats of camera stacks and of other programs. The same tables give the same bytes on
// every machine.
#pragma once

#include <string>
#include <vector>

#include "imaging/gain_tables.h"

namespace zerklsc::tool {

// Tables that were calibrated under light of one colour temperature.
struct LitTables {
    GainTables tables;
    int kelvin = 0;
};

// What a format could not hold, as a sentence without a file name.
using Losses = std::vector<std::string>;

// The LensShadingCorrection part of a tuning file for rkisp1: 17 x 17 gains from edge to edge for each
// temperature, 1024 = 1.0, limited to 4095.
std::string encode_rkisp1(const std::vector<LitTables>& sets, Losses& losses);

// The same with a radial polynomial of each colour in place of the gains, fitted to them; what the fit is off
// by is a loss.
std::string encode_rkisp1_polynomial(const std::vector<LitTables>& sets, Losses& losses);

// The rpi.alsc part of a Raspberry Pi tuning file: cell centres of a columns x rows grid, ascending
// temperatures, three decimals. The luminance table is the mean of the sets.
std::string encode_alsc(const std::vector<LitTables>& sets, int columns, int rows, Losses& losses);

// An Android lens-shading map as JSON: rows x columns x 4 gains in the order R, G of even rows, G of odd
// rows, B, corners on the array's edges, every gain at least 1.
std::string encode_android(const GainTables& tables, int columns, int rows, Losses& losses);

// The tables as they are, border included: a C header, comma-separated values with a line for each node, and
// a NumPy array of 4 x rows x columns 16-bit gains by plane.
std::string encode_c_array(const GainTables& tables);
std::string encode_csv(const GainTables& tables);
std::string encode_npy(const GainTables& tables);

} // namespace zerklsc::tool
