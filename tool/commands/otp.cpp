// zerklsc otp: streams for a module's one-time-programmable memory
#include "commands/otp.h"

#include "commands.h"

namespace zerklsc::tool {

void add_otp(Command app) {
    Command otp = app.subcommand("otp", "Streams for a module's one-time-programmable memory");
    otp.require_subcommand();
    add_otp_encode(otp);
    add_otp_decode(otp);
    add_otp_check(otp);
    otp.footer("Example:\n"
               "  zerklsc simulate -o flat.pgm\n"
               "  zerklsc calibrate flat.pgm -o tables.json\n"
               "  zerklsc otp encode tables.json --container --serial A0317 -o module.otp\n"
               "  zerklsc otp check module.otp");
}

} // namespace zerklsc::tool
