// Frames and tables as reports name them.
#pragma once

#include <string>
#include <vector>

#include "commands/report.h"
#include "imaging/gain_tables.h"
#include "imaging/levels.h"
#include "imaging/otp_stream.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// One line about a frame whose pattern and black level are known: size, pattern, depth and black level.
std::string describe(const RawFrame& frame);

// The same as fields of the document.
void add_frame(Report& report, const RawFrame& frame);

// A deviation and where it is, as "-2.31 % at 12,3004", and as JSON.
std::string text_of(const Deviation& deviation);
JsonValue json_of(const Deviation& deviation);

// What is measured of a channel, and of the colours against each other, as JSON.
JsonValue json_of(Colour colour, const PlaneLevels& levels);
JsonValue json_of_colour_shading(const FrameLevels& levels, BayerPattern pattern);

// The channels of a stream that has lost this, as JSON.
JsonValue json_of(const StreamLoss& loss);

// Tables that were written to `path`: a line, and the fields of the document.
void add_written_tables(Report& report, const std::string& path, const GainTables& tables);

// Lines of cells, each column as wide as it needs to be; all columns but the first stand to the right.
std::string text_table(const std::vector<std::vector<std::string>>& rows);

// A fraction as "38.21 %".
std::string percent(double fraction);

// A number with four digits after the point, for JSON.
double rounded(double value);

} // namespace zerklsc::tool
