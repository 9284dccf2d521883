// Option, Command, run_command_line
#include "commands/command_line.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

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
    return Option(app_->add_option(names, variable, description));
}

Option Command::option(const char* names, double& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::option(const char* names, std::string& variable, const std::string& description) {
    return Option(app_->add_option(names, variable, description));
}

Option Command::flag(const char* names, bool& variable, const std::string& description) {
    return Option(app_->add_flag(names, variable, description));
}

Command Command::subcommand(const char* name, const char* description) {
    return Command(app_->add_subcommand(name, description));
}

void Command::require_subcommand() {
    app_->require_subcommand(1);
}

void Command::footer(const std::string& text) {
    app_->footer(text);
}

void Command::action(std::function<void()> run) {
    app_->callback(std::move(run));
}

int run_command_line(const char* description, const char* footer, void (*add_commands)(Command), int argc,
                     char** argv) {
    CLI::App app{description, "zerklsc"};
    app.set_version_flag("--version", "zerklsc " ZERKLSC_VERSION);
    app.require_subcommand(1);
    app.footer(footer);
    add_commands(Command(&app));
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        // Of a word that is no command, CLI11 only says that a command is missing.
        const bool unknown = argc > 1 && argv[1][0] != '-' && app.get_subcommands().empty();
        const std::string what =
            unknown ? fmt::format("{} is not a command", argv[1]) : first_line(error.what());
        fmt::print(stderr, "{}: {} (see {} --help)\n", command_of(app), what, command_of(app));
        return exit_usage;
    }
    return exit_success;
}

} // namespace zerklsc::tool
