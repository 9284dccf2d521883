// What a stream loses of its tables, as the otp commands report and judge it.
#pragma once

#include <string>

#include "commands/report.h"
#include "imaging/otp_stream.h"

namespace zerklsc::tool {

// Prints the loss of a stream of so many bytes, and adds it to the document.
void add_loss(Report& report, const GainTables& tables, int mode, size_t size, const StreamLoss& loss);

// Why a stream loses more than rounding does, and what helps.
std::string reason_of(const GainTables& tables, int mode, const StreamLoss& loss);

// The largest gain error that is allowed, percent: --max-error, or the usual one of the mode where that is 0.
double limit_of(double max_error, int mode);

} // namespace zerklsc::tool
