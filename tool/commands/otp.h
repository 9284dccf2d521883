// The subcommands of zerklsc otp.
#pragma once

#include "commands/command_line.h"

namespace zerklsc::tool {

void add_otp_encode(Command otp);
void add_otp_decode(Command otp);
void add_otp_check(Command otp);

} // namespace zerklsc::tool
