// Option, Command, parse_command_line
#include "commands/command_line.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "commands/option_tree.h"
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
    option_->check(CLI::IsMember(std::vector<std::string>(words.begin(), words.end())));
    return *this;
}

Option& Option::takes(const std::string& value) {
    option_->type_name(value);
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

Option Command::flag(const char* names, bool& variable, const std::string& description) {
    return Option(app_->add_flag(names, variable, description));
}

Command Command::subcommand(const char* name, const char* description) {
    return {app_->add_subcommand(name, description), request_};
}

void Command::require_subcommand() {
    app_->require_subcommand(1);
}

void Command::footer(const std::string& text) {
    app_->footer(text);
}

void Command::action(std::function<void(Report&)> run) {
    app_->add_flag("--json", request_->json,
                   "print JSON: verdict, numbers and warnings, also when it refuses");
    app_->add_flag("-q,--quiet", request_->quiet, "print neither results nor warnings, only why it fails");
    app_->callback([request = request_, run = std::move(run)] { request->run = run; });
}

Request parse_command_line(const Program& program, int argc, char** argv) {
    Request request;
    CLI::App app{program.description, "zerklsc"};
    app.set_version_flag("-V,--version", program.version);
    app.require_subcommand(1);
    app.footer(program.footer);
    program.add_commands({&app, &request});
    // CLI11 takes the words from the last to the first.
    std::vector<std::string> words = words_of(argc, argv);
    const std::string first = words.empty() ? "" : words.front();
    if (first == "--option-tree") {
        request.run = [tree = option_tree(app).text()](Report& report) { report.print(tree); };
        return request;
    }
    std::ranges::reverse(words);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        // Of a word that is no command, CLI11 only says that a command is missing, or prints the general
        // help.
        const bool unknown = !first.empty() && first[0] != '-' && app.get_subcommands().empty();
        if (error.get_exit_code() == 0 && !unknown) {
            app.exit(error);
            return {};
        }
        const std::string what = unknown ? first + " is not a command" : first_line(error.what());
        usage_failure("{}: {} (see {} --help)", command_of(app), what, command_of(app));
    }
    return request;
}

} // namespace zerklsc::tool
