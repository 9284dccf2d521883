// link_target, note_input, keep_files_apart
#include "io/file_identity.h"

#include <optional>
#include <tuple>

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"
#include "io/directory.h"

namespace zerklsc::tool {
namespace {

std::vector<std::string> noted_inputs;

// A file by its device and number, or one that does not exist yet by its directory and name.
using Identity = std::tuple<dev_t, ino_t, std::string>;

std::optional<Identity> identity_of(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0)
        return S_ISREG(status.st_mode) ? std::optional(Identity{status.st_dev, status.st_ino, ""})
                                       : std::nullopt;
    const std::string target = link_target(path);
    const std::string directory = directory_of(target);
    if (stat(directory.empty() ? "." : directory.c_str(), &status) != 0)
        return std::nullopt;
    return Identity{status.st_dev, status.st_ino, target.substr(directory.size())};
}

bool are_one(const std::string& a, const std::string& b) {
    if (a == "-" || b == "-")
        return a == b;
    const auto first = identity_of(a), second = identity_of(b);
    return first && first == second;
}

} // namespace

std::string link_target(const std::string& path) {
    std::string target = path;
    // As many as the kernel follows, and a look at where the last one leads. A longer chain is a circle.
    constexpr int most_links = 40;
    for (int links = 0; links <= most_links; ++links) {
        char text[PATH_MAX];
        const ssize_t length = readlink(target.c_str(), text, sizeof text);
        if (length < 0)
            return target;
        const std::string_view next(text, static_cast<size_t>(length));
        std::string base = next.starts_with('/') ? "" : directory_of(target);
        target = base.append(next);
    }
    return path;
}

void note_input(const std::string& path) {
    noted_inputs.push_back(path);
}

void keep_files_apart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs) {
    std::vector<std::string> all_inputs = noted_inputs;
    all_inputs.insert(all_inputs.end(), inputs.begin(), inputs.end());
    for (size_t i = 0; i < outputs.size(); ++i) {
        if (outputs[i].empty())
            continue;
        for (const std::string& input : all_inputs)
            // "-" is the standard input there.
            if (!input.empty() && outputs[i] != "-" && are_one(input, outputs[i]))
                usage_failure("{}: is an input of this command too: give another name for the output",
                              outputs[i]);
        for (size_t j = 0; j < i; ++j)
            if (!outputs[j].empty() && are_one(outputs[j], outputs[i]))
                usage_failure(
                    "{} and {}: two outputs of this command would be one file: give each a name of its own",
                    outputs[j], outputs[i]);
    }
}

} // namespace zerklsc::tool
