// input_record, json_of
#include "io/input_record.h"

#include <sys/stat.h>

#include "io/directory.h"
#include "io/sha256.h"

namespace zerklsc::tool {

TableInput input_record(const char* role, const std::string& path, const std::optional<FileState>& read) {
    if (path == "-")
        return {role, input_name(path), "", {}, {}};
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        return {role, path.substr(directory_of(path).size()), "", {}, {}};
    return {role, path.substr(directory_of(path).size()), sha256_of_file(path, read), {}, {}};
}

JsonValue json_of(const TableInput& input) {
    const JsonValue hash = input.sha256.empty() ? JsonValue::null() : JsonValue(input.sha256);
    return JsonValue::object({{"role", input.role}, {"name", input.name}, {"sha256", hash}});
}

} // namespace zerklsc::tool
