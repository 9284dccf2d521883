// option_tree
#include "commands/option_tree.h"

#include <CLI/CLI.hpp>

namespace zerklsc::tool {
namespace {

std::vector<std::string> names_of(const CLI::Option& option) {
    if (option.get_positional())
        return {option.get_name(true)};
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

JsonValue tree_of(const CLI::Option& option) {
    const bool takes_value = option.get_items_expected_max() > 0;
    const bool many = option.get_items_expected_max() > 1
                      || option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    return JsonValue::object({{"names", JsonValue::list(names_of(option))},
                              {"description", option.get_description()},
                              {"value", takes_value ? option.get_type_name() : ""},
                              {"default", option.get_default_str()},
                              {"required", option.get_required()},
                              {"many", many}});
}

} // namespace

JsonValue option_tree(const CLI::App& app) {
    JsonValue options = JsonValue::array();
    for (const CLI::Option* option : app.get_options())
        options.add(tree_of(*option));
    JsonValue commands = JsonValue::array();
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        commands.add(option_tree(*command));
    return JsonValue::object({{"name", app.get_name()},
                              {"description", app.get_description()},
                              {"footer", app.get_footer()},
                              {"options", std::move(options)},
                              {"commands", std::move(commands)}});
}

} // namespace zerklsc::tool
