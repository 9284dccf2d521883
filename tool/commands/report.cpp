// Report
#include "commands/report.h"

#include "terminal.h"

namespace zerklsc::tool {
namespace {

const char* verdict_of(ExitCode code, bool doubtful) {
    switch (code) {
    case exit_success:
        return warnings().empty() && !doubtful ? "pass" : "warn";
    case exit_limit:
        return "fail";
    case exit_input:
        return "refuse";
    case exit_usage:
    case exit_system:
        break;
    }
    return "error";
}

} // namespace

std::string Report::json(ExitCode code, const std::string& message) const {
    JsonValue whole = JsonValue::object({{"verdict", verdict_of(code, doubtful_)}, {"exit_code", code}});
    if (code != exit_success)
        whole.add("message", message);
    whole.add("warnings", JsonValue::list(warnings()));
    whole.append(document_);
    return whole.text() + "\n";
}

} // namespace zerklsc::tool
