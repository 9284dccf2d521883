// OutputSet, write_file
#include "io/output_set.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"

namespace zerklsc::tool {
namespace {

// What the signal handler removes: copies of the temporary names, empty where there is none. A handler may
// not touch a std::string.
constexpr size_t most_outputs = 8;
std::array<std::array<char, 4096>, most_outputs> doomed;

extern "C" void remove_and_die(int signal) {
    for (const auto& name : doomed)
        if (name[0] != '\0')
            unlink(name.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void watch_signals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        // A signal that the parent process ignores (nohup) stays ignored.
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
            action.sa_handler = remove_and_die;
            sigaction(signal, &action, nullptr);
        }
    }
}

void doom(size_t slot, const std::string& name) {
    if (slot < most_outputs && name.size() < doomed[slot].size())
        std::memcpy(doomed[slot].data(), name.c_str(), name.size() + 1);
}

[[noreturn]] void cannot_write(const std::string& path, int error) {
    system_failure("{}: cannot be written: {}", path, std::strerror(error));
}

// 0, or the error number.
int write_all(int fd, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno != EINTR)
            return errno;
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
    return 0;
}

void write_special(const std::string& path, const std::string& bytes) {
    const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    int error = fd < 0 ? errno : write_all(fd, bytes);
    if (fd >= 0 && close(fd) != 0 && error == 0)
        error = errno;
    if (error != 0)
        cannot_write(path, error);
}

// mkstemp() makes the file for its owner alone; the user expects what the umask says.
mode_t plain_file_mode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Brings a rename to the disk. Not every file system can, and the file itself is safe already.
void sync_directory_of(const std::string& path) {
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    fsync(fd);
    close(fd);
}

} // namespace

OutputSet::~OutputSet() {
    for (size_t i = 0; i < pending_.size(); ++i) {
        unlink(pending_[i].temporary.c_str());
        doom(i, "");
    }
}

void OutputSet::add(const std::string& path, const std::string& bytes) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode))
            usage_failure("{}: is a directory, not a file to write: give a file name inside it", path);
        if (!S_ISREG(status.st_mode))
            return write_special(path, bytes);
    }
    std::string temporary = path + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        cannot_write(path, errno);
    pending_.push_back({temporary, path});
    doom(pending_.size() - 1, temporary);
    watch_signals();

    int error = write_all(fd, bytes);
    if (error == 0 && (fchmod(fd, plain_file_mode()) != 0 || fsync(fd) != 0))
        error = errno;
    if (close(fd) != 0 && error == 0)
        error = errno;
    if (error != 0)
        cannot_write(path, error);
}

void OutputSet::commit() {
    while (!pending_.empty()) {
        const Pending& last = pending_.back();
        if (rename(last.temporary.c_str(), last.path.c_str()) != 0)
            cannot_write(last.path, errno);
        sync_directory_of(last.path);
        doom(pending_.size() - 1, "");
        pending_.pop_back();
    }
}

void write_file(const std::string& path, const std::string& bytes) {
    OutputSet outputs;
    outputs.add(path, bytes);
    outputs.commit();
}

} // namespace zerklsc::tool
