// check_colours: whether the greens are where the pattern has them
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "check/checks.h"

namespace zerklsc::tool {

void check_colours(const Judgement& judgement) {
    const auto light = [&](Colour colour) {
        const auto plane = static_cast<size_t>(plane_of_colour(judgement.capture.pattern, colour));
        return std::max(judgement.analysis.planes[plane].bright, 1e-3);
    };
    const auto apart = [&](Colour a, Colour b) { return std::abs(std::log(light(a) / light(b))); };
    const double greens = apart(Colour::gr, Colour::gb), others = apart(Colour::r, Colour::b);
    judgement.add("green-balance", "", 100 * (std::exp(greens) - 1),
                  "Gr and Gb should agree: look at --pattern, and for cross-talk or a shifted row");
    // Where the other pair agrees and the greens do not, the pattern is shifted by one row or column.
    const bool shifted = greens > 0.03 && others < 0.02 && others < greens / 3;
    judgement.add(
        "pattern", "", shifted ? 100 : 0,
        "R and B agree and the greens do not: the pattern is shifted by one row or column; give the right "
        "--pattern");
}

} // namespace zerklsc::tool
