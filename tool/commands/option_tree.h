// The commands and their options as data, from which the manual page and the completion of the shells are
// made.
#pragma once

#include "io/json_value.h"

namespace CLI {
class App;
} // namespace CLI

namespace zerklsc::tool {

// An object of the command's "name", "description", "footer", "options" and "commands", the last again a list
// of such objects. An option has its "names" (one without dashes for a positional argument), a "description",
// the "value" that it takes as the help names it (empty for a flag), its "default", and whether it is
// "required" and may be given "many" values.
JsonValue option_tree(const CLI::App& app);

} // namespace zerklsc::tool
