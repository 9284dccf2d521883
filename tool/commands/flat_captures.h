// The captures that a calibration is made from: flat fields of one module, and what the sensor gives in the
// dark.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/command_line.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "imaging/captures.h"
#include "imaging/gain_tables.h"

namespace zerklsc::tool {

struct CaptureOptions {
    RawOptions raw;
    std::vector<std::string> flats, darks;
    std::string average = name_of(Averaging::mean);

    std::vector<std::string> paths() const; // of all
};

struct FlatCaptures {
    std::vector<RawFrame> captures; // dark frame taken off
    Averaging averaging = Averaging::mean;
    std::optional<RawFrame> averaged;            // nothing where it is the only capture
    std::vector<std::optional<FileState>> files; // the flats and the dark frames, before they were read

    const RawFrame& average() const { return averaged ? *averaged : captures.front(); }
};

// The flats, how raw files are read, --average and --dark.
void add_capture_options(Command command, CaptureOptions& options);

// --average and --dark alone.
void add_averaging_options(Command command, CaptureOptions& options);

// A usage failure for words that no option takes, before anything is read.
void check_words(const CaptureOptions& options);

// Reads all; says the dark level and the way of averaging in the report. Captures whose black level is not
// known are refused where there is no dark frame.
FlatCaptures read_flat_captures(const CaptureOptions& options, Report& report);

// The files as a table file names them, with what was found in each flat.
std::vector<TableInput> recorded(const CaptureOptions& options, const FlatCaptures& flats,
                                 const std::vector<Findings>& findings);

} // namespace zerklsc::tool
