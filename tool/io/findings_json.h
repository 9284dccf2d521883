// What the checks found, as every document of the tool holds it.
#pragma once

#include "imaging/gain_tables.h"
#include "io/json_value.h"

namespace zerklsc::tool {

// One object for each finding: name, plane or null, value, unit, limits or null, verdict and advice.
JsonValue json_of(const Findings& findings);

// A number of any size with the four digits that count.
double shortened(double value);

// How many "samples", "lines" and "dust_spots".
JsonValue json_of(const KeptOut& kept_out);

} // namespace zerklsc::tool
