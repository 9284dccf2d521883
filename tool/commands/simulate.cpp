// zerklsc simulate: a plausible flat-field capture
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/number_list.h"
#include "commands/option_values.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/simulation.h"
#include "io/output_set.h"
#include "io/raw_format.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct SimulateOptions {
    SimulationSettings settings;
    std::string pattern = "RGGB";
    std::string corners = "34,40,41,45";
    std::string centre = "51.5,48";
    std::string colours = "62,100,100,70";
    std::vector<std::string> faults;
    std::string output;
};

void run(const SimulateOptions& options, Report& report) {
    SimulationSettings settings = options.settings;
    settings.pattern = pattern_of_option(options.pattern);
    std::ranges::copy(number_list("--corners", options.corners, 4, 1, 199), settings.corners.begin());
    std::ranges::copy(number_list("--centre", options.centre, 2, 0, 100), settings.centre.begin());
    std::ranges::copy(number_list("--colours", options.colours, 4, 0, 1000), settings.colour_levels.begin());
    for (const std::string& fault : options.faults)
        settings.faults.push_back(fault_from(fault));
    check_even(settings.width, settings.height);
    if (settings.black >= (1 << settings.bits) - 1)
        usage_failure("--black-level: {} leaves no range below the full scale of {}: give a lower level",
                      settings.black, (1 << settings.bits) - 1);
    const Progress progress("simulating " + output_name(options.output));
    const RawFrame frame = simulate(settings);
    report.add("output", options.output);
    add_frame(report, frame);
    write_file(options.output,
               [&](const ByteSink& sink) { write_raw_frame(options.output, frame, "frame.pgm", sink); });
}

void add_sensor_options(Command command, SimulateOptions& options) {
    SimulationSettings& s = options.settings;
    command.option("--width", s.width, "frame width in pixels").range(2, largest_side).show_default();
    command.option("--height", s.height, "frame height in pixels").range(2, largest_side).show_default();
    command.option("--pattern", options.pattern, "Bayer pattern")
        .takes("{RGGB,GRBG,GBRG,BGGR}")
        .show_default();
    command.option("--bits", s.bits, "bit depth of the samples").range(9, 16).show_default();
    command.option("--black-level", s.black, "black level").range(0, 65535).show_default();
    command.option("--full-well", s.full_well, "electrons at full scale; 0 for a frame without noise")
        .range(0.0, 1e6)
        .show_default();
    command.option("--read-noise", s.read_noise, "read noise in electrons").range(0.0, 1e4).show_default();
    command.option("--defects", s.defects, "pixels stuck at 0 or at full scale")
        .range(0, 1000000)
        .show_default();
    command.option("--response", s.response, "deviation of the pixels' sensitivities, percent")
        .range(0.0, 50.0)
        .show_default();
    command.option("--seed", s.seed, "another seed is another noise, dust and defects").show_default();
}

void add_lens_options(Command command, SimulateOptions& options) {
    SimulationSettings& s = options.settings;
    command
        .option("--level", s.level, "green at the optical centre, percent of the range; above 100 it clips")
        .range(0.0, 1000.0)
        .show_default();
    command.option("--corners", options.corners, "corner brightness, percent of the centre")
        .takes("R,GR,GB,B")
        .show_default();
    command.option("--centre", options.centre, "optical centre, percent of width and height")
        .takes("X,Y")
        .show_default();
    command.option("--colours", options.colours, "level of each colour, percent of green")
        .takes("R,GR,GB,B")
        .show_default();
    command.option("--wave", s.wave, "how far the shading of a small lens waves about the cos^4 law, percent")
        .range(0.0, 50.0)
        .show_default();
    command.option("--dust", s.dust, "soft dark spots").range(0, 10000).show_default();
}

std::string list_of_faults() {
    std::string text =
        "Faults, as --fault uneven=40; the number after the name is what is taken without one:\n";
    for (const FaultKind& kind : fault_kinds())
        text += fmt::format("  {:<24} {}\n", fmt::format("{}={}", kind.name, kind.usual), kind.description);
    return text + "\n";
}

} // namespace

void add_simulate(Command app) {
    auto options = std::make_shared<SimulateOptions>();
    Command command = app.subcommand("simulate", "Make a flat-field capture of a module that does not exist");
    command
        .option("-o,--output", options->output,
                "frame to write: .pgm (also on standard output, -), or .raw for headerless")
        .required()
        .takes("FILE");
    add_sensor_options(command, *options);
    add_lens_options(command, *options);
    command.repeated("--fault", options->faults, "something that spoils the capture; may be given again")
        .takes("NAME[=AMOUNT]");
    command.footer("The same options give the same bytes on every machine.\n\n" + list_of_faults()
                   + "Example:\n"
                     "  zerklsc simulate -o flat.pgm\n"
                     "  zerklsc simulate --width 2104 --height 1560 --dust 20 --seed 7 -o dusty.pgm");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
