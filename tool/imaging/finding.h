// What a check found, and how bad that is.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zerklsc::tool {

enum class Verdict { pass, warn, refuse };

const char* name_of(Verdict verdict);

// Two limits of a number. Where `warn` is below `refuse`, large values are bad, else small ones.
struct Limits {
    std::optional<double> warn;
    std::optional<double> refuse;

    bool large_is_bad() const;
    Verdict judge(double value) const;
};

struct Finding {
    std::string name;
    std::string plane; // a colour, or nothing for the whole frame
    double value = 0;  // no number where the check could not judge
    std::string unit;
    Limits limits;
    Verdict verdict = Verdict::pass;
    std::string advice; // one sentence
};

using Findings = std::vector<Finding>;

Verdict worst_of(const Findings& findings);

} // namespace zerklsc::tool
