// Limits, worst_of
#include "imaging/finding.h"

#include <algorithm>

namespace zerklsc::tool {
namespace {

// Whether a value is at or beyond a limit; what is no number is beyond every one.
bool beyond(double value, double limit, bool large_is_bad) {
    return large_is_bad ? !(value < limit) : !(value > limit);
}

} // namespace

const char* name_of(Verdict verdict) {
    return verdict == Verdict::pass ? "pass" : verdict == Verdict::warn ? "warn" : "refuse";
}

bool Limits::large_is_bad() const {
    return !(warn && refuse && *warn > *refuse);
}

Verdict Limits::judge(double value) const {
    if (refuse && beyond(value, *refuse, large_is_bad()))
        return Verdict::refuse;
    if (warn && beyond(value, *warn, large_is_bad()))
        return Verdict::warn;
    return Verdict::pass;
}

Verdict worst_of(const Findings& findings) {
    Verdict worst = Verdict::pass;
    for (const Finding& finding : findings)
        worst = std::max(worst, finding.verdict);
    return worst;
}

} // namespace zerklsc::tool
