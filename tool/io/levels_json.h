// What is measured of a frame, and what a stream loses, as JSON.
#pragma once

#include "imaging/levels.h"
#include "imaging/otp_stream.h"
#include "io/json_value.h"

namespace zerklsc::tool {

// A deviation and where it is.
JsonValue json_of(const Deviation& deviation);

// What is measured of a channel, and of the colours against each other.
JsonValue json_of(Colour colour, const PlaneLevels& levels);
JsonValue json_of_colour_shading(const FrameLevels& levels, BayerPattern pattern);

// The channels of a stream that has lost this.
JsonValue json_of(const StreamLoss& loss);

// A number with four digits after the point.
double rounded(double value);

} // namespace zerklsc::tool
