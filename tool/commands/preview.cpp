// zerklsc preview: a picture of what the lens does to a frame, and of what is left after correction
#include "commands.h"
namespace zerklsc::tool {
void add_preview(CLI::App&) {}
}
