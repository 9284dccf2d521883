// directory_of, sync_directory_of
#include "io/directory.h"

#include <fcntl.h>
#include <unistd.h>

namespace zerklsc::tool {

std::string directory_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

void sync_directory_of(const std::string& path) {
    const std::string directory = directory_of(path);
    const int fd = open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    fsync(fd);
    close(fd);
}

} // namespace zerklsc::tool
