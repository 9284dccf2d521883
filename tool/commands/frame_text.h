// Frames and tables as reports name them.
#pragma once

#include <string>
#include <vector>

#include "commands/report.h"
#include "imaging/gain_tables.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// The frame's pattern; RGGB with a warning when it is not known.
BayerPattern pattern_or_warning(const RawFrame& frame);

// One line about a frame: size, pattern, depth and black level.
std::string describe(const RawFrame& frame, BayerPattern pattern, const BlackLevel& black);

// The same as fields of the document.
void add_frame(Report& report, const RawFrame& frame, BayerPattern pattern, const BlackLevel& black);

// Tables that were written to `path`: a line, and the fields of the document.
void add_written_tables(Report& report, const std::string& path, const GainTables& tables);

// Lines of cells, each column as wide as it needs to be; all columns but the first stand to the right.
std::string text_table(const std::vector<std::vector<std::string>>& rows);

// A fraction as "38.21 %".
std::string percent(double fraction);

// A number with four digits after the point, for JSON.
double rounded(double value);

} // namespace zerklsc::tool
