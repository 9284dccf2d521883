// Frames and tables as reports name them.
#pragma once

#include <string>

#include "commands/report.h"
#include "imaging/gain_tables.h"
#include "imaging/levels.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

// One line about a frame whose pattern and black level are known: size, pattern, depth and black level.
std::string describe(const RawFrame& frame);

// The same as fields of the document.
void add_frame(Report& report, const RawFrame& frame);

// A deviation and where it is, as "-2.31 % at 12,3004".
std::string text_of(const Deviation& deviation);

// Tables that were written to `path`: a line, and the fields of the document.
void add_written_tables(Report& report, const std::string& path, const GainTables& tables);

} // namespace zerklsc::tool
