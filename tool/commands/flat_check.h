// The checks of a flat field, as commands run them before they use it.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "check/checks.h"
#include "commands/command_line.h"
#include "commands/report.h"
#include "imaging/calibration.h"
#include "imaging/exposure.h"

namespace zerklsc::tool {

struct FlatCheckOptions {
    std::vector<std::string> limits;
    bool force = false;
    bool keep_outliers = false;
};

// As many digits as count, and never an exponent; "-" for what is no number.
std::string short_number(double value, int digits);

// --limit, which changes the limits of a check.
void add_limit_option(Command command, FlatCheckOptions& options);

// --limit, --force, which uses a refused capture all the same, and --keep-outliers.
void add_flat_check_options(Command command, FlatCheckOptions& options);

CheckLimits limits_of(const FlatCheckOptions& options, double clip_limit = usual_clip_limit);

// "flat.pgm: shadow of R is 12.3 % (refused above 8): advice".
std::string sentence_of(const std::string& name, const Finding& finding);

// Whether a frame has room for what the checks measure: so many pixels each way.
constexpr int smallest_checked = 2 * least_tiles * smallest_tile_side;
bool can_be_checked(const RawFrame& frame);

// The findings of a capture whose pattern and black level are known; none of one that has no room for them.
Findings check_flat(const RawFrame& frame, const CalibrationSettings& settings, const CheckLimits& limits);

struct CheckedFlats {
    std::vector<Findings> findings; // of each capture; none of a small one
    std::vector<KeptOut> kept_out;  // of the gains, of each capture
    // The captures without that; none where there is nothing to be kept out.
    std::vector<RawFrame> cleaned;
    std::string refusal; // the first sentence that refuses; empty where none does, or where it is forced
    // Of the first capture, by plane: x and y as fractions of width and height. Nothing for a small one.
    std::optional<std::array<std::array<double, 2>, 4>> optical_centre;

    Findings all_findings() const;
};

// Checks captures whose pattern and black level are known, and warns. Small frames are judged by their
// exposure alone, with a data failure where it is wrong.
CheckedFlats examine_flats(std::span<const RawFrame> captures, const CalibrationSettings& settings,
                           const FlatCheckOptions& options, double clip_limit);

// The same; adds "checks" and "kept_out" to the document, and refuses what must be refused.
CheckedFlats check_flats(std::span<const RawFrame> captures, const CalibrationSettings& settings,
                         const FlatCheckOptions& options, double clip_limit, Report& report);

} // namespace zerklsc::tool
