// A module of a line, from its captures to its result.
#pragma once

#include <memory>
#include <string>

#include "commands/module_calibration.h"
#include "line/manifest.h"
#include "line/result_line.h"

namespace zerklsc::tool {

// How a module is calibrated and judged: by the command line, and by the preset that the manifest names.
struct ModuleOptions {
    CaptureOptions captures; // without the flats
    MethodOptions method;
    int otp_mode = 0;
    double max_error = 0;    // of the stream, percent; 0: the usual one of the mode
    double max_flatness = 0; // after correction, percent; 0: none
};

void add_module_options(Command command, ModuleOptions& options);

// A usage failure for words that no option takes, before a capture is read.
void check_words(const ModuleOptions& options);

// What a batch writes of each module beside its line.
struct ModuleOutputs {
    std::string tables, streams; // directories; empty where there are none
    bool without_gains = false;
};

// The digits of ResultLine::settings.
std::string settings_text(const ModuleOptions& options, const ModuleOutputs& outputs);

// A file of the manifest as it is opened: relative to the folder of the manifest.
std::string path_in(const std::string& folder, const std::string& file);

// A message that names a file as the manifest does: the same wherever the manifest lies.
std::string with_name(std::string text, const std::string& path, const std::string& name);

// The line of a module about which nothing but its fault is known.
ResultLine line_of_fault(const Module& module, const std::string& fault);

// Reads, checks, calibrates, predicts, packs and judges; writes what is asked for. The verdict says what went
// wrong with the module; a failure is thrown only where an output cannot be written. Prints nothing.
ResultLine result_of(const Module& module, const std::string& folder, const ModuleOptions& options,
                     const ModuleOutputs& outputs);

} // namespace zerklsc::tool
