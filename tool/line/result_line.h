// What is known about one module of a line: a JSON object in one line of a results file.
//
// docs/scale.md has its fields. The same module, options and tool give the same bytes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/finding.h"
#include "imaging/raw_frame.h"

namespace zerklsc::tool {

constexpr const char* result_format_name = "zerklsc-result";
constexpr int result_format_version = 1;

// From good to bad. `refuse`: a check refused the flat field; `fail`: calibrated, but worse than a limit;
// `error`: could not be read or calibrated.
enum class ModuleVerdict { pass, warn, refuse, fail, error };
constexpr std::array<const char*, 5> module_verdict_names{"pass", "warn", "refuse", "fail", "error"};

const char* name_of(ModuleVerdict verdict);

// Something of each colour, in the order of `all_colours`.
template <class T>
using ByColour = std::array<T, 4>;

struct ResultFile {
    std::string name;   // an input as the manifest has it, an output without its directory
    std::string sha256; // in hexadecimal digits; nothing where an input could not be read
};

struct ResultFrame {
    int width = 0, height = 0;
    int bits = 0;
    BayerPattern pattern = BayerPattern::rggb;
    BlackLevel black{};
};

struct ResultGrid {
    int algorithm = 0; // ZERKLSC_ALGORITHM_...
    int step = 0;
    int width = 0, height = 0; // nodes of a table, its border of one node included
    int filter_radius = 0, shading_percent = 100;

    size_t nodes() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

struct ResultCheck {
    std::string name;
    std::string plane;           // a colour, or nothing for the whole frame
    std::optional<double> value; // nothing where it is no number
    Verdict verdict = Verdict::pass;
};

// Fractions; nothing where the module did not get that far.
struct ResultNumbers {
    std::optional<ByColour<double>> flatness;           // of the capture, or the average of several
    std::optional<ByColour<double>> corner;             // corner over centre of the same
    std::optional<ByColour<double>> predicted_flatness; // of the least flat capture, through the ISP's model
    std::optional<int64_t> otp_bytes;
    std::optional<double> otp_loss; // the largest gain error of the stream
};

struct ResultLine {
    std::string serial;
    std::optional<std::string> preset, illuminant; // as the manifest has them
    // 16 hexadecimal digits that tell the options and the tool's version from others; nothing where the
    // preset could not be read.
    std::optional<std::string> settings;
    ModuleVerdict verdict = ModuleVerdict::error;
    std::string reason; // one sentence; empty for a pass
    std::vector<ResultFile> inputs, outputs;
    // From here on nothing where the module did not get that far.
    std::optional<ResultFrame> frame;
    std::optional<ResultGrid> grid;
    std::vector<ResultCheck> checks;
    ResultNumbers numbers;
    std::optional<ByColour<std::array<double, 2>>> optical_centre; // x, y as fractions of width and height
    // Each as long as grid->nodes(), row by row, 1024 = 1.0. Nothing too where gains were not asked for.
    std::optional<ByColour<std::vector<uint16_t>>> gains;
    std::string tool; // its version
};

// Without a line break.
std::string text_of(const ResultLine& result);

// A data failure says what is wrong with a line; `place` is for messages, as "results.jsonl:17". Every field
// is there with a value of its kind; fields of other names are ignored.
ResultLine result_line_of(std::string_view line, const std::string& place);

} // namespace zerklsc::tool
