// zerklsc resample: tables for another grid step, crop or frame size
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/frame_text.h"
#include "commands/number_list.h"
#include "commands/report.h"
#include "failure.h"
#include "imaging/resampling.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "io/table_text.h"

namespace zerklsc::tool {
namespace {

struct ResampleOptions {
    std::string tables, output, text;
    int step = 0;     // 0: as it is
    std::string crop; // empty: the whole frame
    std::string size; // empty: that of the window
};

CropWindow window_of(const ResampleOptions& options, const GainTables& tables) {
    if (options.crop.empty())
        return {0, 0, tables.raw_width, tables.raw_height};
    const auto crop = integer_list("--crop", options.crop, 4, 0, largest_side);
    const int x = crop[0], y = crop[1], width = crop[2], height = crop[3];
    if (x % 2 != 0 || y % 2 != 0 || width % 2 != 0 || height % 2 != 0 || width == 0 || height == 0)
        usage_failure("--crop: {} is not on whole 2 x 2 Bayer cells: give even numbers", options.crop);
    if (x + width > tables.raw_width || y + height > tables.raw_height)
        data_failure("{}: is for frames of {} x {}, and --crop {} reaches beyond them",
                     input_name(options.tables), tables.raw_width, tables.raw_height, options.crop);
    return {x, y, width, height};
}

GainTables resample(const ResampleOptions& options, const GainTables& tables) {
    const int step = options.step != 0 ? options.step : tables.step;
    const CropWindow window = window_of(options, tables);
    std::vector<int> size{window.width, window.height};
    if (!options.size.empty())
        size = integer_list("--size", options.size, 2, 2, largest_side);
    const int width = size[0], height = size[1];
    if (width % 2 != 0 || height % 2 != 0)
        usage_failure("--size: {} is not whole 2 x 2 Bayer cells: give even numbers", options.size);
    return resample_crop(tables, input_name(options.tables), window, width, height, step);
}

void run(const ResampleOptions& options, Report& report) {
    keep_files_apart({options.tables}, {options.output, options.text});
    check_table_name(options.output);
    const GainTables result = resample(options, read_table_json(options.tables));
    OutputSet outputs;
    outputs.add(options.output, encode_tables_for(options.output, result));
    if (!options.text.empty())
        outputs.add(options.text, encode_table_text(result));
    outputs.commit();
    add_written_tables(report, options.output, result);
}

} // namespace

void add_resample(Command app) {
    auto options = std::make_shared<ResampleOptions>();
    Command command =
        app.subcommand("resample", "Carry tables over to another grid step, crop or frame size");
    command.option("tables", options->tables, "table file of zerklsc calibrate").required().takes("FILE");
    command
        .option("-o,--output", options->output,
                "table file to write: JSON, or the gains alone as text (.txt)")
        .required()
        .takes("FILE");
    command.option("--text", options->text, "also write the four tables as plain text, in plane order")
        .takes("FILE");
    command.option("--step", options->step, "node spacing in plane samples (default: as it is)")
        .range(smallest_step, largest_step);
    command.option("--crop", options->crop, "window in pixels of the calibrated frame")
        .takes("X,Y,WIDTH,HEIGHT");
    command.option("--size", options->size, "size of the new frame in pixels (default: that of the window)")
        .takes("WIDTH,HEIGHT");
    command.footer(
        "Example:\n"
        "  zerklsc simulate -o flat.pgm\n"
        "  zerklsc calibrate flat.pgm -o tables.json\n"
        "  zerklsc resample tables.json --step 32 -o finer.json\n"
        "  zerklsc resample tables.json --crop 184,480,3840,2160 --size 1920,1080 --step 32 -o video.json");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
