// Option, Command, parse_command_line
#include "commands/command_line.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "commands/option_tree.h"
#include "commands/preset.h"
#include "commands/report.h"
#include "failure.h"

namespace zerklsc::tool {
namespace {

// CLI11's own range lets what is not a number pass.
template <class T>
CLI::Validator within(T lowest, T highest) {
    const auto check = [lowest, highest](std::string& text) {
        T value{};
        if (CLI::detail::lexical_cast(text, value) && value >= lowest && value <= highest)
            return std::string();
        return fmt::format("{} is not a number from {} to {}", text, lowest, highest);
    };
    return {check, fmt::format("[{} - {}]", lowest, highest)};
}

// A whole number that fits; CLI11 lets the sign and the overflow wrap.
std::string check_unsigned(const std::string& text) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc{} && end == text.data() + text.size())
        return "";
    return fmt::format("{} is not a whole number from 0 to {}", text, std::numeric_limits<uint64_t>::max());
}

// The usage line has the options that must be given; CLI11 leaves two lines empty between groups of options.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_group(std::string group, bool is_positional,
                           std::vector<const CLI::Option*> options) const override {
        const bool follows_another = !is_positional && group != get_label("Options");
        const std::string text =
            CLI::Formatter::make_group(std::move(group), is_positional, std::move(options));
        return follows_another && text.starts_with('\n') ? text.substr(1) : text;
    }

    std::string make_usage(const CLI::App* app, std::string name) const override {
        std::string line = CLI::Formatter::make_usage(app, std::move(name));
        std::string required;
        for (const CLI::Option* option : app->get_options())
            if (option->get_required() && option->nonpositional())
                required += fmt::format(" {} {}",
                                        option->get_snames().empty() ? "--" + option->get_lnames()[0]
                                                                     : "-" + option->get_snames()[0],
                                        option->get_type_name());
        const size_t at = line.find(" [OPTIONS]");
        return at == std::string::npos ? line : line.insert(at, required);
    }
};

// The command that was named last.
const CLI::App& named_command(const CLI::App& app) {
    const auto named = app.get_subcommands();
    return named.empty() ? app : named_command(*named.front());
}

bool is_option(const std::string& word) {
    return word.starts_with('-');
}

// A word that stands where a command is missing.
std::string unknown_command(const CLI::App& named) {
    const auto rest = named.remaining();
    const bool stands = named.get_require_subcommand_min() > 0 && !rest.empty() && !is_option(rest.front());
    return stands ? rest.front() : "";
}

std::string first_line(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

// The name of the subcommand that was meant, as "zerklsc calibrate".
std::string command_of(const CLI::App& app) {
    std::string name = app.get_name();
    for (const CLI::App* sub : app.get_subcommands())
        name += " " + command_of(*sub);
    return name;
}

// What is wrong, in the words of the command's help. CLI11 lists what is left over from back to front, and of
// an unknown word where a command is expected only says that a command is missing.
std::string what_is_wrong(const CLI::App& named, const CLI::ParseError& error) {
    std::string text = first_line(error.what());
    if (const std::string command = unknown_command(named); !command.empty())
        return command + " is not a command";
    if (const auto rest = named.remaining(); !rest.empty()) {
        const auto option = std::ranges::find_if(rest, is_option);
        return option != rest.end() ? *option + " is not known" : rest.front() + " is one argument too many";
    }
    if (named.get_require_subcommand_min() > 0)
        return "a command is missing";
    // CLI11 keeps what stood before the command with the program.
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError))
        return "an option of the command stands before it";
    if (error.get_name() == "ArgumentMismatch" && text.ends_with("missing"))
        return text.substr(0, text.find(':')) + ": its value is missing";
    if (const size_t at = text.find(": At Most 1 required"); at != std::string::npos)
        return text.substr(0, at) + " is given more than once";
    return text;
}

// The command line; "help COMMAND" is "COMMAND --help".
std::vector<std::string> words_of(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (!words.empty() && words[0] == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    return words;
}

} // namespace

Option& Option::required() {
    option_->required();
    return *this;
}

Option& Option::range(int lowest, int highest) {
    option_->check(within(lowest, highest));
    return *this;
}

Option& Option::range(double lowest, double highest) {
    option_->check(within(lowest, highest));
    return *this;
}

Option& Option::one_of(std::initializer_list<const char*> words) {
    option_->check(CLI::IsMember(std::vector<std::string>(words.begin(), words.end())).description(""));
    option_->type_name(fmt::format("{{{}}}", fmt::join(words, ",")));
    return *this;
}

Option& Option::takes(const std::string& value) {
    option_->type_name(value);
    const char* const missing = value == "FILE" ? "the name of a file is missing" : "its value is empty";
    option_->check([missing](const std::string& text) { return text.empty() ? missing : ""; });
    return *this;
}

Option& Option::show_default() {
    option_->capture_default_str();
    return *this;
}

Option& Option::needs(const Option& other) {
    option_->needs(other.option_);
    return *this;
}

Option& Option::excludes(const Option& other) {
    option_->excludes(other.option_);
    return *this;
}

Option Command::option(const char* names, int& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::option(const char* names, uint64_t& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description)->check(check_unsigned));
}

Option Command::option(const char* names, double& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::option(const char* names, std::string& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::option(const char* names, std::vector<std::string>& variable,
                       const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::repeated(const char* names, std::vector<std::string>& variable,
                         const std::string& description) {
    return Option(app_->add_option(names, variable, description)->expected(1)->take_all());
}

Option Command::flag(const char* names, bool& variable, const std::string& description) {
    return Option(app_->add_flag(names, variable, description));
}

Command Command::subcommand(const char* name, const char* description) {
    return {app_->add_subcommand(name, description), request_};
}

void Command::require_subcommand() {
    app_->require_subcommand(1);
    add_report_options();
}

void Command::section(const char* title) {
    app_->option_defaults()->group(title);
}

void Command::end_section() {
    section("Options");
}

void Command::footer(const std::string& text) {
    app_->footer(text);
}

void Command::add_report_options() {
    app_->add_flag("--json", request_->json,
                   "print JSON: verdict, numbers and warnings, also when it refuses");
    app_->add_flag("-q,--quiet", request_->quiet, "print neither results nor warnings, only why it fails");
}

void Command::action(std::function<void(Report&)> run) {
    app_->add_option("--preset", request_->preset,
                     "TOML file with options of this command, which the command line overrides")
        ->type_name("FILE");
    add_report_options();
    app_->callback([request = request_, run = std::move(run)] { request->run = run; });
}

Request parse_command_line(const Program& program, int argc, char** argv) {
    Request request;
    CLI::App app{program.description, "zerklsc"};
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("-V,--version", program.version);
    app.footer(program.footer);
    Command root(&app, &request);
    root.require_subcommand();
    std::vector<std::string> words = words_of(argc, argv);
    const std::string first = words.empty() ? "" : words.front();
    const bool asks_version = words.size() == 1 && (first == "--version" || first == "-V");
    if (!asks_version) // which would take a third longer with the options of all commands
        program.add_commands(root, first);
    if (first == "--option-tree") {
        request.run = [tree = option_tree(app).text()](Report& report) { report.print(tree); };
        return request;
    }
    words = with_preset(app, program.add_commands, words);
    // CLI11 takes the words from the last to the first.
    std::ranges::reverse(words);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        const CLI::App& named = named_command(app);
        if (error.get_exit_code() == 0 && unknown_command(named).empty()) {
            app.exit(error);
            return {};
        }
        usage_failure("{}: {} (see {} --help)", command_of(app), what_is_wrong(named, error),
                      command_of(app));
    }
    return request;
}

} // namespace zerklsc::tool
