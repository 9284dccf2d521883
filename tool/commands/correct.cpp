// zerklsc correct: a frame as the ISP would deliver it
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/raw_options.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/correction.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

constexpr int isp_bits = 10;

struct CorrectOptions {
    RawOptions raw;
    std::string tables, output, isp;
    bool restore_black = false;
    bool scale = false;
};

// A frame that the ISP can take.
void bring_to_10_bits(RawFrame& frame, bool scale) {
    if (frame.bits > isp_bits && !scale)
        data_failure("{}: has {}-bit samples, and the ISP corrects 10-bit samples: pass --scale to correct "
                     "them scaled to 10 bits",
                     frame.name, frame.bits);
    scale_to_10_bits(frame);
}

void run(const CorrectOptions& options, Report& report) {
    keep_files_apart({options.raw.path, options.tables}, {options.output});
    const GainTables tables = read_whole_gains(options.tables);
    const Isp isp = isp_of_option(options.isp, tables);
    RawFrame frame = read_raw_for(options.raw, tables, input_name(options.tables));
    bring_to_10_bits(frame, options.scale);
    const BlackLevel black = *frame.black;
    add_frame(report, frame);
    {
        const Progress progress("correcting " + frame.name);
        subtract_black(frame, black);
        correct(frame, tables, input_name(options.tables), isp);
        if (options.restore_black)
            add_black(frame, black);
        write_file(options.output,
                   [&](const ByteSink& sink) { write_raw_frame(options.output, frame, frame.name, sink); });
    }
    report.add("output", options.output);
    report.add("isp", name_of(isp));
    report.print(fmt::format("{}: corrected for {}, black level {} taken off{}\n",
                             one_line(output_name(options.output)), name_of(isp), text_of(black),
                             options.restore_black ? " and put back" : ""));
}

} // namespace

void add_correct(Command app) {
    auto options = std::make_shared<CorrectOptions>();
    Command command = app.subcommand("correct", "Correct a frame with gain tables exactly as the ISP does");
    add_raw_options(command, options->raw, "raw");
    command.option("--tables", options->tables, "table file of zerklsc calibrate").required().takes("FILE");
    command
        .option("-o,--output", options->output,
                "frame to write, in the form of the input or by its extension")
        .required()
        .takes("FILE");
    add_isp_option(command, options->isp);
    command.flag("--restore-black", options->restore_black, "put the black level back after the correction");
    command.flag("--scale", options->scale, "scale samples deeper than 10 bits to 10 bits");
    command.footer("The result has 10-bit samples, as the ISP's. A black level that neither --black-level "
                   "nor the frame\n"
                   "names is that of the tables.\n\n"
                   "Example:\n"
                   "  zerklsc simulate -o flat.pgm\n"
                   "  zerklsc calibrate flat.pgm -o tables.json\n"
                   "  zerklsc correct flat.pgm --tables tables.json --restore-black -o corrected.pgm");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
