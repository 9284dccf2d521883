// What goes wrong when a flat field is captured: the faults that a simulated capture can have.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "imaging/raw_frame.h"

namespace zerklsc::tool {

struct Fault {
    std::string name;
    double amount = 0; // percent, or a number, as the fault's description says
};

// The name, what the amount means, and the amount that is taken where none is given.
struct FaultKind {
    const char* name;
    const char* description;
    double usual;
    double lowest, highest;
};

const std::vector<FaultKind>& fault_kinds();

// "uneven=40", or "uneven" for the usual amount; a usage failure for any other text.
Fault fault_from(const std::string& text);

// The factor by which a fault changes the light on a pixel; empty for a fault that is none of the scene. The
// seed moves it about. Functions of x and y in pixels.
using LightFactor = std::function<double(int x, int y)>;
LightFactor light_factor(const Fault& fault, const RawFrame& frame, uint64_t seed);

// Changes the samples as a fault of the sensor or of the file does.
void spoil_samples(const Fault& fault, RawFrame& frame, uint64_t seed);

} // namespace zerklsc::tool
