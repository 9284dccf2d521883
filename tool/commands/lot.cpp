// zerklsc lot: what the results of many modules tell together
#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "commands/report.h"
#include "failure.h"
#include "io/file_identity.h"
#include "io/input_file.h"
#include "io/output_set.h"
#include "io/table_json.h"
#include "lot/distances.h"
#include "lot/document.h"
#include "lot/result_stream.h"
#include "lot/statistics.h"
#include "lot/summary_file.h"
#include "preview/sheet.h"
#include "report/page.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct LotOptions {
    std::vector<std::string> inputs, results;
    std::string partial, golden, page;
};

// Says which lines are left out, as long as they are few.
class Complaints {
  public:
    void add(const std::string& what) {
        constexpr uint64_t most_said = 20;
        if (++count_ <= most_said)
            remark(what);
        else if (count_ == most_said + 1)
            remark("more lines are left out, and counted below");
    }

  private:
    uint64_t count_ = 0;
};

void take_line(const StreamLine& line, const std::string& place, LotSummary& lot, Complaints& complaints) {
    try {
        if (!line.readable)
            data_failure("{}: is longer than any result: left out", place);
        const ResultLine result = result_line_of(line.text, place);
        const LotSummary::Added added = lot.add(result, place);
        if (added == LotSummary::Added::repeated)
            complaints.add(fmt::format("{}: serial {} stands here again: only its first result counts", place,
                                       result.serial));
        if (added == LotSummary::Added::other_kind)
            complaints.add(
                fmt::format("{}: module {} is left out: it is of another kind than the first ones, {}", place,
                            result.serial, text_of(*lot.kind)));
    } catch (const Failure& failure) {
        if (!line.ended) {
            ++lot.left_out.torn;
            complaints.add(fmt::format("{}: the last line is torn, and left out: run the batch again, which "
                                       "goes on from there",
                                       place));
        } else {
            ++lot.left_out.bad;
            complaints.add(fmt::format("{}: left out", failure.what()));
        }
    }
}

bool holds_summary(const std::string& path) {
    return path != "-" && is_summary(InputFile(path).head());
}

// All inputs once. The result files among them go to `again`.
LotSummary read_all(const LotOptions& options, std::vector<std::string>& again, bool& all_results) {
    constexpr uint64_t largest_summary = uint64_t{1} << 34;
    LotSummary lot;
    Complaints complaints;
    for (const std::string& path : options.inputs) {
        const std::string name = input_name(path);
        const Progress progress("reading " + name);
        if (holds_summary(path)) {
            all_results = false;
            lot.add(decode_summary(read_file(path, largest_summary), name), name);
            continue;
        }
        again.push_back(path);
        read_lines(path, [&](const StreamLine& line) {
            take_line(line, fmt::format("{}:{}", name, line.number), lot, complaints);
        });
    }
    if (lot.modules() == 0)
        data_failure("{}: holds no result: expected lines as zerklsc batch writes them",
                     input_name(options.inputs.front()));
    return lot;
}

// The modules of the result files a second time, each of the lot's once.
void measure_distances(const std::vector<std::string>& paths, LotSummary& lot, LotDistances& distances) {
    for (const std::string& path : paths) {
        const Progress progress("reading again " + input_name(path));
        read_lines(path, [&](const StreamLine& line) {
            ResultLine result;
            try {
                result = result_line_of(line.text, "");
            } catch (const Failure&) {
                return; // said before
            }
            const bool same = result.frame && result.grid ? lot.kind == kind_of(result) : true;
            if (same && lot.serials.visit(mark_of(result.serial)) == SerialSet::Visit::first)
                distances.add(result);
        });
    }
    if (lot.serials.visited() != lot.serials.size())
        data_failure("{}: only {} of the {} modules are in the result files: give all files that the "
                     "summaries were made from",
                     input_name(paths.front()), lot.serials.visited(), lot.serials.size());
}

void check_usage(const LotOptions& options) {
    keep_files_apart(options.inputs, {options.partial, options.golden, options.page});
    keep_files_apart(options.results, {options.partial, options.golden, options.page});
    if (!options.page.empty() && options.page != "-" && extension_of(options.page) != ".html")
        usage_failure("{}: a page is written as HTML: give a name that ends in .html", options.page);
    const bool piped = std::ranges::find(options.inputs, "-") != options.inputs.end();
    if (piped && options.partial.empty())
        usage_failure("standard input cannot be read twice: give a file, or make a summary of it with "
                      "--partial");
}

// What only shows that the lot was read.
void report_partial(const LotSummary& lot, Report& report) {
    report.print(fmt::format("{} modules, {} good\n", lot.modules(),
                             std::llround(lot.yield() * static_cast<double>(lot.modules()))));
    report.add("modules", lot.modules());
    report.add("yield", lot.yield());
}

void check_left_out(const LotSummary& lot) {
    const LinesLeftOut& lines = lot.left_out;
    if (lines.all() > 0)
        data_failure("{} lines are left out: {} torn, {} bad, {} with a serial that was there before, {} of "
                     "another kind; all else is done",
                     lines.all(), lines.torn, lines.bad, lines.repeated, lines.other_kind);
}

std::string page_of(const LotFindings& findings) {
    JsonValue document = document_of(findings);
    document.add("program", "zerklsc " ZERKLSC_VERSION);
    std::vector<PanelRow> rows;
    if (findings.summary.with_gains() > 0) {
        const GainTables golden = golden_tables(findings.summary);
        const PanelSize size = panel_size(golden.raw_width, golden.raw_height);
        ByColour<std::vector<double>> spreads;
        for (size_t c = 0; c < spreads.size(); ++c)
            spreads[c] = findings.nodes[c].spread;
        rows = {gain_row(golden, size), spread_row(golden, spreads, size)};
        rows[0].title = "median gain";
    }
    return encode_page(PageKind::lot, document.text(), rows);
}

void write_outputs(const LotOptions& options, const LotFindings& findings) {
    OutputSet outputs;
    if (!options.golden.empty()) {
        if (findings.summary.with_gains() == 0)
            data_failure("{}: no module of the lot has gains: there are no golden tables", options.golden);
        outputs.add(options.golden, encode_tables_for(options.golden, golden_tables(findings.summary)));
    }
    if (!options.page.empty())
        outputs.add(options.page, page_of(findings));
    outputs.commit();
}

void run(const LotOptions& options, Report& report) {
    check_usage(options);
    std::vector<std::string> again;
    bool all_results = true;
    LotSummary lot = read_all(options, again, all_results);
    again.insert(again.end(), options.results.begin(), options.results.end());
    if (!options.partial.empty()) {
        report_partial(lot, report);
        write_file(options.partial, encode_summary(lot));
        return check_left_out(lot);
    }
    LotFindings findings(lot);
    LotDistances distances(lot);
    if (all_results || !options.results.empty()) {
        measure_distances(again, lot, distances);
        findings.distances = &distances;
    }
    report.append(document_of(findings));
    report.print(text_of(findings));
    write_outputs(options, findings);
    check_left_out(lot);
}

} // namespace

void add_lot(Command app) {
    auto options = std::make_shared<LotOptions>();
    Command command = app.subcommand("lot", "Say what the results of many modules tell together");
    command.option("results", options->inputs, "result files of batch, or summaries that --partial wrote")
        .required()
        .takes("FILE");
    Option partial =
        command.option("--partial", options->partial, "only write a summary, which lot merges with others")
            .takes("FILE");
    command.option("--golden", options->golden, "table file to write: the median of each node")
        .takes("FILE")
        .excludes(partial);
    command.option("-o,--output", options->page, "page to write (HTML)").takes("FILE").excludes(partial);
    command
        .option("--results", options->results,
                "the result files that summaries were made from, for the nearest module and outliers")
        .takes("FILE")
        .excludes(partial);
    command.footer(
        "Results are read twice: outliers are known once the medians are. Exit code 3, after all is\n"
        "written, where lines were left out: torn, bad, of a serial that was there, of another kind.\n\n"
        "The same from parts of a lot, byte for byte:\n"
        "  zerklsc lot part1.jsonl --partial part1.lot\n"
        "  zerklsc lot part2.jsonl --partial part2.lot\n"
        "  zerklsc lot part1.lot part2.lot --results part1.jsonl part2.jsonl -o lot.html\n\n"
        "Example, with the results of zerklsc batch:\n"
        "  zerklsc lot results.jsonl --golden golden.json -o lot.html");
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
