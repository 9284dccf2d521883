// json_of, json_of_colour_shading, rounded
#include "io/levels_json.h"

#include <cmath>

namespace zerklsc::tool {

JsonValue json_of(const Deviation& deviation) {
    return JsonValue::object(
        {{"deviation", rounded(deviation.fraction)}, {"at", JsonValue::array({deviation.x, deviation.y})}});
}

JsonValue json_of(Colour colour, const PlaneLevels& levels) {
    return JsonValue::object({{"colour", name_of(colour)},
                              {"mean", rounded(levels.mean)},
                              {"centre", rounded(levels.centre())},
                              {"corner_to_centre", rounded(levels.corner_to_centre())},
                              {"flatness", rounded(levels.flatness())},
                              {"worst_block", json_of(levels.worst())}});
}

JsonValue json_of_colour_shading(const FrameLevels& levels, BayerPattern pattern) {
    return JsonValue::object({{"r_to_g", json_of(colour_shading(levels, pattern, Colour::r))},
                              {"b_to_g", json_of(colour_shading(levels, pattern, Colour::b))}});
}

JsonValue json_of(const StreamLoss& loss) {
    JsonValue channels = JsonValue::array();
    for (const Colour colour : all_colours) {
        const auto i = static_cast<size_t>(colour);
        channels.add(JsonValue::object({{"colour", name_of(colour)},
                                        {"saturated_fields", loss.saturated[i]},
                                        {"largest_gain_error", rounded(loss.largest_error[i])}}));
    }
    return channels;
}

double rounded(double value) {
    return std::round(value * 1e4) / 1e4;
}

} // namespace zerklsc::tool
