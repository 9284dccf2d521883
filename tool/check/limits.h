// The limits of all checks: what a reasonable flat field of any camera passes, unless the user says
// otherwise.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "imaging/finding.h"

namespace zerklsc::tool {

struct CheckLimit {
    const char* name;
    const char* unit;
    Limits usual;
    const char* meaning;
};

// From which on "corner" refuses unless the user says otherwise, in per cent.
constexpr double refused_corner = 30;

// In the order in which the checks are reported.
const std::vector<CheckLimit>& usual_limits();

class CheckLimits {
  public:
    CheckLimits();
    // "shadow=2,8": the limits from which a check warns and refuses, "none" for one that there is not. A
    // usage failure for any other text.
    void set(const std::string& text);

    // A finding of the check of that name, judged.
    Finding judge(const std::string& name, const std::string& plane, double value,
                  const std::string& advice) const;

    // That of a check which could not judge the capture, and why.
    Finding not_judged(const std::string& name, const std::string& reason) const;

  private:
    std::map<std::string, Limits> limits_;
};

} // namespace zerklsc::tool
