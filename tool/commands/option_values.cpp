// pattern_of_option, black_level_of_option, algorithm_from, add_isp_option, isp_of_option, check_even
#include "commands/option_values.h"

#include "failure.h"
#include "io/black_level_text.h"
#include "zerklsc.h"

namespace zerklsc::tool {

BayerPattern pattern_of_option(const std::string& text) {
    const auto pattern = bayer_pattern_from(text);
    if (!pattern)
        usage_failure("--pattern: {} is not known: expected RGGB, GRBG, GBRG or BGGR", text);
    return *pattern;
}

BlackLevel black_level_of_option(const std::string& text) {
    const auto black = black_level_from(text);
    if (!black)
        usage_failure(
            "--black-level: {} is not a level from 0 to 65535, nor four of them with commas between", text);
    return *black;
}

int algorithm_from(const std::string& text) {
    for (int number = ZERKLSC_ALGORITHM_HALVANE; number <= ZERKLSC_ALGORITHM_ORVEL_WEIGHTS; ++number)
        if (text == algorithm_name(number) || text == std::to_string(number))
            return number;
    usage_failure(
        "--algorithm: {} is not known: expected 0 or halvane, 1 or orvel-otp, 2 or orvel, 3 or beta, 4 or "
        "orvel-weights",
        text);
}

Option add_isp_option(Command command, std::string& name) {
    return command.option("--isp", name, "ISP that corrects (default: the one that the tables were made for)")
        .takes("{tvessa2,vessal2}");
}

Isp isp_of_option(const std::string& name, const GainTables& tables) {
    if (name.empty())
        return isp_of_algorithm(tables.algorithm);
    for (const Isp isp : {Isp::tvessa2, Isp::vessal2})
        if (name == name_of(isp))
            return isp;
    usage_failure("--isp: {} is not known: expected tvessa2 or vessal2", name);
}

void check_even(int width, int height) {
    if (width % 2 != 0 || height % 2 != 0)
        usage_failure("--width and --height: {} x {} are not whole 2 x 2 Bayer cells: give even numbers",
                      width, height);
}

} // namespace zerklsc::tool
