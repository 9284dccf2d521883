// with_preset, set_from_preset
#include "commands/preset.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "failure.h"
#include "io/file_identity.h"
#include "io/preset_file.h"

namespace zerklsc::tool {
namespace {

constexpr const char* preset_option = "--preset";

const CLI::App* command_of(const CLI::App& app, const std::vector<std::string>& words) {
    // Before the command there may be flags.
    const auto first =
        std::ranges::find_if(words, [](const std::string& word) { return !word.starts_with("-"); });
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (first != words.end() && command->get_name() == *first)
            return command;
    return nullptr;
}

const CLI::Option* option_of(const CLI::App& command, const std::string& name) {
    for (const CLI::Option* option : command.get_options())
        if (option->check_lname(name))
            return option;
    return nullptr;
}

bool any_command_has(const CLI::App& app, const std::string& name) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        if (option_of(*command, name) != nullptr || any_command_has(*command, name))
            return true;
    return false;
}

bool is_given(const CLI::Option& option, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word.starts_with("--") && option.check_lname(word.substr(2, word.find('=') - 2)))
            return true;
        if (word.size() > 1 && word[0] == '-' && word[1] != '-' && option.check_sname(word.substr(1, 1)))
            return true;
    }
    return false;
}

void add_item(const CLI::Option& option, const PresetItem& item, std::vector<std::string>& words) {
    const bool flag = option.get_expected_max() == 0;
    for (const std::string& value : item.values)
        if (!flag)
            words.push_back("--" + item.name + "=" + value);
        else if (value == "true")
            words.push_back("--" + item.name);
        else if (value != "false")
            usage_failure("--preset: {} is {}: expected true or false", item.name, value);
}

bool program_has(AddCommands add_commands, const std::string& name) {
    CLI::App app;
    Request request;
    add_commands(Command(&app, &request), "");
    return any_command_has(app, name);
}

void apply(const CLI::App& app, AddCommands add_commands, const std::string& path,
           std::vector<std::string>& words) {
    const CLI::App* const command = command_of(app, words);
    if (command == nullptr)
        return;
    note_input(path);
    const std::vector<std::string> given = words;
    for (const PresetItem& item : read_preset(path)) {
        const bool everywhere = item.section.empty();
        if (!everywhere && item.section != command->get_name())
            continue;
        const CLI::Option* const option = option_of(*command, item.name);
        if (option == nullptr && (!everywhere || !program_has(add_commands, item.name)))
            usage_failure("--preset: {}: {} is no option{}", path, item.name,
                          everywhere ? "" : " of " + command->get_name());
        if (option != nullptr && !is_given(*option, given))
            add_item(*option, item, words);
    }
}

} // namespace

std::vector<std::string> with_preset(const CLI::App& app, AddCommands add_commands,
                                     const std::vector<std::string>& words) {
    std::vector<std::string> rest;
    std::string path;
    const std::string with_value = std::string(preset_option) + "=";
    for (size_t i = 0; i < words.size(); ++i) {
        if (words[i] == preset_option && i + 1 < words.size())
            path = words[++i];
        else if (words[i].starts_with(with_value))
            path = words[i].substr(with_value.size());
        else
            rest.push_back(words[i]);
    }
    if (!path.empty())
        apply(app, add_commands, path, rest);
    return rest;
}

void set_from_preset(const std::string& path, const std::string& section,
                     const std::function<void(Command)>& add_options, AddCommands add_commands) {
    CLI::App app;
    Request request;
    add_options(Command(&app, &request));
    std::vector<std::string> words;
    for (const PresetItem& item : read_preset(path)) {
        const bool everywhere = item.section.empty();
        if (!everywhere && item.section != section)
            continue;
        if (const CLI::Option* const option = option_of(app, item.name))
            add_item(*option, item, words);
        else if (!everywhere || !program_has(add_commands, item.name))
            usage_failure("--preset: {}: {} is no option of a module", path, item.name);
    }
    std::ranges::reverse(words);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        const std::string text = error.what();
        usage_failure("--preset: {}: {}", path, text.substr(0, text.find('\n')));
    }
}

} // namespace zerklsc::tool
