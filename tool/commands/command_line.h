// The command line as the commands see it: options that fill variables, with their ranges and defaults.
//
// The parser behind it is CLI11. Its headers take several seconds to compile, so few files see them.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zerklsc::tool {

class Report;

// What a command line asks for.
struct Request {
    std::function<void(Report&)> run;
    bool json = false;  // print the report's document, not its text
    std::string preset; // a file of options, for the help text: it is replaced by them before
    bool quiet = false; // no text, no warnings
};

// One option or positional argument of a command.
class Option {
  public:
    explicit Option(CLI::Option* option) : option_(option) {}

    Option& required();
    // Refuses every value outside, and what is not a number.
    Option& range(int lowest, int highest);
    Option& range(double lowest, double highest);
    Option& one_of(std::initializer_list<const char*> words);
    // What the help calls the value: "FILE", "DIR", a list as "{a,b}" (not checked), which shells complete,
    // or any other name.
    Option& takes(const std::string& value);
    // Shows the variable's present value as the default in the help text.
    Option& show_default();
    Option& needs(const Option& other);
    Option& excludes(const Option& other);

  private:
    CLI::Option* option_;
};

// A command or a group of commands. It is a handle: copies stand for the same command.
class Command {
  public:
    Command(CLI::App* app, Request* request) : app_(app), request_(request) {}

    // `names` is as "-o,--output", or a bare word for a positional argument. The variable is set when the
    // option is given, and must live until the command has run.
    Option option(const char* names, int& variable, const std::string& description);
    Option option(const char* names, uint64_t& variable, const std::string& description);
    Option option(const char* names, double& variable, const std::string& description);
    Option option(const char* names, std::string& variable, const std::string& description);
    // Several values, for a positional argument all that are left.
    Option option(const char* names, std::vector<std::string>& variable, const std::string& description);
    // An option that may be given again, with one word each time.
    Option repeated(const char* names, std::vector<std::string>& variable, const std::string& description);
    Option flag(const char* names, bool& variable, const std::string& description);

    Command subcommand(const char* name, const char* description);
    void require_subcommand();
    void footer(const std::string& text);
    // The help lists the options that follow under a title of their own.
    void section(const char* title);
    void end_section();
    // What the command does once its options are set. Every command takes --json and --quiet.
    void action(std::function<void(Report&)> run);

  private:
    void add_report_options();

    CLI::App* app_;
    Request* request_; // filled when the command is named
};

// Adds the command of that name, or all of them where none has it.
using AddCommands = void (*)(Command, std::string_view name);

// The program as its own help describes it.
struct Program {
    const char* description;
    const char* footer;
    std::string version; // what --version prints
    AddCommands add_commands;
};

// Finds the command and sets its options. The request has nothing to run where help or the version was asked
// for and has been printed. A wrong command line is a usage failure.
// "--option-tree", which no help names, asks for all commands as JSON.
Request parse_command_line(const Program& program, int argc, char** argv);

} // namespace zerklsc::tool
