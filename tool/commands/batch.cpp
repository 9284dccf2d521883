// zerklsc batch: a result for each module of a line
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>

#include <fmt/format.h>
#include <unistd.h>

#include "commands.h"
#include "commands/batch_module.h"
#include "commands/preset.h"
#include "failure.h"
#include "io/directory.h"
#include "io/file_identity.h"
#include "line/journal.h"
#include "line/line_progress.h"
#include "line/run_in_order.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

struct BatchOptions {
    std::string manifest, output, shard = "1/1";
    int jobs = 0;
    ModuleOptions module;
    ModuleOutputs outputs;
};

// What holds for all modules of a preset.
struct ModuleSettings {
    ModuleOptions options;
    std::string fault; // why the preset cannot be used
};

// The settings of presets, each read once.
class Presets {
  public:
    Presets(const BatchOptions& options, std::string folder)
        : options_(options), folder_(std::move(folder)) {}

    std::shared_ptr<const ModuleSettings> of(const std::optional<std::string>& preset) {
        // Nobody has so many kinds of modules: what a manifest full of names takes is bounded.
        constexpr size_t most = 256;
        if (known_.size() > most)
            known_.clear();
        auto& settings = known_[preset.value_or("")];
        if (!settings)
            settings = std::make_shared<const ModuleSettings>(read(preset));
        return settings;
    }

  private:
    ModuleSettings read(const std::optional<std::string>& preset) const {
        ModuleSettings settings{options_.module, ""};
        if (!preset)
            return settings;
        try {
            set_from_preset(
                path_in(folder_, *preset), "batch",
                [&](Command command) { add_module_options(command, settings.options); }, add_commands);
            check_words(settings.options);
        } catch (const Failure& failure) {
            settings.fault = with_name(failure.what(), path_in(folder_, *preset), *preset);
        }
        return settings;
    }

    const BatchOptions& options_;
    std::string folder_;
    std::map<std::string, std::shared_ptr<const ModuleSettings>> known_;
};

volatile std::sig_atomic_t ending_signal = 0;

extern "C" void end_soon(int signal) {
    ending_signal = signal;
}

// The first signal lets the modules end that have begun, the next one ends the process as everywhere.
void watch_signals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
            action.sa_handler = end_soon;
            action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
            sigaction(signal, &action, nullptr);
        }
    }
    // A limit of file sizes is a failure of writing like any other.
    std::signal(SIGXFSZ, SIG_IGN);
}

class Batch {
  public:
    Batch(const BatchOptions& options, const Shard& shard)
        : options_(options), shard_(shard), folder_(directory_of(options.manifest)),
          presets_(options, folder_), survey_(survey_manifest(options.manifest, shard)),
          manifest_(options.manifest), journal_(options.output), progress_(survey_.modules) {}

    void take_up() {
        journal_.take_up([this](const ResultLine& result, const std::string& place) { skip(result, place); });
    }

    void run() {
        progress_.begin();
        run_in_order(options_.jobs, [this] { return next_task(); });
        journal_.sync();
    }

    void report(Report& report) const;
    // A failure for the worst that was found.
    void judge() const;

  private:
    std::optional<Module> next_module();
    void pass_over(const Module& module);
    Task next_task();
    void skip(const ResultLine& result, const std::string& place);
    void finish(const Module& module, const ResultLine& result);
    void count(ModuleVerdict verdict) { ++counts_[static_cast<size_t>(verdict)]; }
    uint64_t count_of(ModuleVerdict verdict) const { return counts_[static_cast<size_t>(verdict)]; }
    std::string place_of(const Module& module) const {
        return fmt::format("{}:{}", options_.manifest, module.line);
    }

    const BatchOptions& options_;
    Shard shard_;
    std::string folder_; // of the manifest
    Presets presets_;
    ManifestSurvey survey_;
    size_t repeats_passed_ = 0;
    Manifest manifest_;
    Journal journal_;
    LineProgress progress_;
    std::array<uint64_t, module_verdict_names.size()> counts_{};
    uint64_t skipped_ = 0, bad_lines_ = 0;
};

// The next one of this shard. Lines without a serial are of no shard; the first one passes over them.
std::optional<Module> Batch::next_module() {
    while (std::optional<Module> module = manifest_.next()) {
        if (module->serial.empty() ? shard_.number != 1 : !shard_.has(module->serial))
            continue;
        const auto& repeats = survey_.repeats;
        if (repeats_passed_ < repeats.size() && repeats[repeats_passed_] == module->line) {
            ++repeats_passed_;
            module->fault = "the serial stands in an earlier line of the manifest too";
        }
        return module;
    }
    return std::nullopt;
}

void Batch::pass_over(const Module& module) {
    ++bad_lines_;
    progress_.clear();
    remark(fmt::format("{}: {}: the line is passed over", place_of(module), module.fault));
}

Task Batch::next_task() {
    if (ending_signal != 0)
        return nullptr;
    const std::optional<Module> next = next_module();
    if (!next)
        return nullptr;
    return [this, module = *next, settings = presets_.of(next->preset)]() -> Finish {
        if (module.serial.empty())
            return [this, module] { pass_over(module); };
        const std::string& fault = module.fault.empty() ? settings->fault : module.fault;
        try {
            const ResultLine result = fault.empty()
                                          ? result_of(module, folder_, settings->options, options_.outputs)
                                          : line_of_fault(module, fault);
            return [this, module, result] { finish(module, result); };
        } catch (const Failure& failure) {
            // When its turn has come, so that what stands before it in the manifest is kept.
            return [failure] { throw failure; };
        }
    };
}

// A result that an earlier run has left must be that of the next module.
void Batch::skip(const ResultLine& result, const std::string& place) {
    std::optional<Module> module = next_module();
    for (; module && module->serial.empty(); module = next_module())
        pass_over(*module);
    if (!module)
        data_failure(
            "{}: is a result more than the manifest has modules: give the manifest and the shard that "
            "it was made from, or another name",
            place);
    if (result.serial != module->serial || result.preset != module->preset
        || result.illuminant != module->illuminant)
        data_failure("{}: is of {}, but {} is {}: give the manifest and the shard that it was made from, or "
                     "another name",
                     place, result.serial, place_of(*module), module->serial);
    const auto settings = presets_.of(module->preset);
    const bool comparable = result.settings && settings->fault.empty() && module->fault.empty();
    if (comparable && *result.settings != settings_text(settings->options, options_.outputs))
        data_failure("{}: was made with other options, another preset or another version (it says {}): give "
                     "those again, or another name",
                     place, result.tool);
    count(result.verdict);
    ++skipped_;
    progress_.skip();
}

void Batch::finish(const Module& module, const ResultLine& result) {
    journal_.append(text_of(result));
    count(result.verdict);
    if (result.verdict >= ModuleVerdict::refuse) {
        progress_.clear();
        remark(fmt::format("{}: {}: {}: {}", place_of(module), module.serial, name_of(result.verdict),
                           result.reason));
    }
    progress_.step();
}

void Batch::report(Report& report) const {
    uint64_t done = 0;
    std::string words;
    JsonValue verdicts = JsonValue::object();
    for (size_t i = 0; i < counts_.size(); ++i) {
        done += counts_[i];
        words += fmt::format("{}{} {}", i == 0 ? "" : ", ", counts_[i], module_verdict_names[i]);
        verdicts.add(module_verdict_names[i], counts_[i]);
    }
    report.print(
        fmt::format("{}: {} of {} modules: {}\n", one_line(options_.output), done, survey_.modules, words));
    if (skipped_ > 0)
        report.print(fmt::format("{} of them were there already\n", skipped_));
    report.add("output", options_.output);
    report.add("shard", options_.shard);
    report.add("modules", survey_.modules);
    report.add("done", done);
    report.add("taken_up", skipped_);
    report.add("verdicts", std::move(verdicts));
    report.add("bad_lines", bad_lines_);
    if (count_of(ModuleVerdict::warn) > 0)
        report.doubt();
}

void Batch::judge() const {
    if (ending_signal != 0)
        system_failure("{}: ended by a signal: the same command goes on", options_.output);
    const uint64_t unusable = count_of(ModuleVerdict::refuse) + count_of(ModuleVerdict::error);
    if (unusable + bad_lines_ > 0)
        data_failure(
            "{}: {} flat fields refused, {} modules that could not be read or calibrated, {} bad lines "
            "of the manifest: each is named there or above",
            options_.output, count_of(ModuleVerdict::refuse), count_of(ModuleVerdict::error), bad_lines_);
    if (count_of(ModuleVerdict::fail) > 0)
        limit_failure("{}: {} modules failed a limit", options_.output, count_of(ModuleVerdict::fail));
}

void make_directory(const std::string& path) {
    if (path.empty())
        return;
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        system_failure("{}: cannot be made: {}", path, error.message());
    if (access(path.c_str(), W_OK | X_OK) != 0)
        system_failure("{}: no file can be written there", path);
}

void run(BatchOptions options, Report& report) {
    const auto shard = shard_from(options.shard);
    if (!shard)
        usage_failure("--shard: {} is no share: expected I/N, from 1/N to N/N", options.shard);
    if (options.output == "-")
        usage_failure("-o: results are read again when a batch goes on: give a file");
    keep_files_apart({options.manifest}, {options.output});
    check_words(options.module);
    make_directory(options.outputs.tables);
    make_directory(options.outputs.streams);
    if (options.jobs == 0)
        options.jobs = usual_jobs();
    watch_signals();
    Batch batch(options, *shard);
    batch.take_up();
    try {
        batch.run();
    } catch (...) {
        batch.report(report);
        throw;
    }
    batch.report(report);
    batch.judge();
}

constexpr auto batch_footer =
    "A manifest names files relative to its own folder, several of one module with ';' between, and for "
    "each\n"
    "module the preset that overrides these options. The same command goes on with what a signal, a "
    "kill or a\n"
    "full disk has stopped; the results are the same, byte for byte, whatever --jobs is.\n"
    "Exit code: that of the worst module. 0: pass or warn; 1: a module failed a limit; 3: a flat field "
    "was\n"
    "refused or could not be read; 4: the batch could not go on.\n\n"
    "Example:\n"
    "  zerklsc simulate --seed 1 -o a1.pgm\n"
    "  zerklsc simulate --seed 2 -o a2.pgm\n"
    "  printf 'serial,files\\nA1,a1.pgm\\nA2,a2.pgm\\n' > lot.csv\n"
    "  zerklsc batch lot.csv -o results.jsonl";

} // namespace

void add_batch(Command app) {
    auto options = std::make_shared<BatchOptions>();
    Command command = app.subcommand("batch", "Check, calibrate and judge every module of a manifest");
    command
        .option("manifest", options->manifest,
                "CSV with the columns serial, files, preset and illuminant, or lines of JSON")
        .required()
        .takes("FILE");
    command
        .option("-o,--output", options->output,
                "results file, a line of JSON for each module; one that is there is gone on with")
        .required()
        .takes("FILE");
    command.option("--tables", options->outputs.tables, "also write each module's table file, SERIAL.json")
        .takes("DIR");
    command
        .option("--streams", options->outputs.streams,
                "also write each module's OTP stream in a container, SERIAL.otp")
        .takes("DIR");
    command.flag("--no-gains", options->outputs.without_gains, "leave the gains out of the results");
    command.option("--jobs", options->jobs, "modules at a time (default: as many as processors)")
        .range(1, 1024);
    command.option("--shard", options->shard, "the I-th of N shares of the modules, chosen by their serials")
        .takes("I/N")
        .show_default();
    add_module_options(command, options->module);
    command.footer(batch_footer);
    command.action([options](Report& report) { run(*options, report); });
}

} // namespace zerklsc::tool
