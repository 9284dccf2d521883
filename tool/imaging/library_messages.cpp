// LibraryMessages
#include "imaging/library_messages.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

std::mutex standard_output;

// A file without a name, which goes with its descriptor.
int unnamed_file() {
    const char* const directory = std::getenv("TMPDIR");
    std::string name = std::string(directory != nullptr ? directory : "/tmp") + "/zerklsc.XXXXXX";
    const int fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        data_failure("{}: no temporary file can be made: {}: set TMPDIR to a directory that can be written",
                     name, std::strerror(errno));
    unlink(name.c_str());
    return fd;
}

std::string contents_of(int fd) {
    std::string text;
    std::array<char, 4096> chunk;
    lseek(fd, 0, SEEK_SET);
    for (ssize_t n; (n = read(fd, chunk.data(), chunk.size())) > 0;)
        text.append(chunk.data(), static_cast<size_t>(n));
    return text;
}

} // namespace

LibraryMessages::LibraryMessages() : alone_(standard_output), saved_(-1), kept_(unnamed_file()) {
    std::fflush(stdout);
    saved_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(kept_, STDOUT_FILENO);
}

LibraryMessages::~LibraryMessages() {
    finish();
}

std::map<std::string, int> LibraryMessages::finish() {
    std::map<std::string, int> counts;
    if (kept_ < 0)
        return counts;
    std::fflush(stdout);
    // A standard output that was closed from the start is closed again.
    if (saved_ >= 0)
        dup2(saved_, STDOUT_FILENO);
    else
        close(STDOUT_FILENO);
    std::istringstream lines(contents_of(kept_));
    for (std::string line; std::getline(lines, line);)
        if (const size_t end = line.find_last_not_of(' '); end != std::string::npos)
            ++counts[line.substr(0, end + 1)];
    if (saved_ >= 0)
        close(saved_);
    close(kept_);
    saved_ = kept_ = -1;
    alone_.unlock();
    return counts;
}

} // namespace zerklsc::tool
