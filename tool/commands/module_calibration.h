// The calibration of one module from its flat fields, as `calibrate` and `batch` do it.
#pragma once

#include <array>
#include <string>

#include "commands/flat_captures.h"
#include "commands/flat_check.h"
#include "imaging/calibration.h"

namespace zerklsc::tool {

struct MethodOptions {
    CalibrationSettings settings;
    std::string algorithm;
    double clip_limit;
    FlatCheckOptions check;

    MethodOptions();
};

// --algorithm, the grid's options, --clip-limit and the options of the checks.
void add_method_options(Command command, MethodOptions& options);

// With the step and the algorithm that are taken for this capture.
CalibrationSettings settings_for(const MethodOptions& options, const RawFrame& flat);

// The tables of checked captures, with all that a table file says of where they come from. The black level is
// taken off the frame that they are measured on: the only capture, or the average.
GainTables calibrate_flats(const CaptureOptions& options, FlatCaptures& flats, CheckedFlats& checked,
                           const CalibrationSettings& settings);

// Warns of gains that both ISPs raise, and of those that they cannot reach.
void warn_about_gains(const std::string& name, const GainTables& tables);

// How flat the ISP's correction leaves captures, the worst of them.
struct Prediction {
    std::array<double, 4> planes{}; // of the captures that the tables were made from, by plane
    double on_left_out = -1;        // each by tables made from the others; negative where there is but one

    double on_captures() const; // the worst plane
};

// A data failure where the ISP cannot correct with these tables. An only capture is itself corrected.
Prediction predict(FlatCaptures& flats, const CheckedFlats& checked, const GainTables& tables,
                   const CalibrationSettings& settings);

// Warns where full correction leaves the captures visibly uneven.
void warn_about_prediction(const std::string& name, const GainTables& tables, const Prediction& prediction);

} // namespace zerklsc::tool
