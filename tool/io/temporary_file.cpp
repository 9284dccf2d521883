// TemporaryFile, Backup, SignalsWait
#include "io/temporary_file.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <set>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"
#include "io/directory.h"

namespace zerklsc::tool {
namespace {

constexpr std::string_view prefix = ".zerklsc-";
constexpr std::string_view pattern = ".zerklsc-XXXXXX";
// A file that is younger may have been made by somebody who has not come to lock it yet.
constexpr time_t youngest_stale = 60;

// What the signal handler removes: copies of the temporary names, empty where there is none. A handler may
// not touch a std::string.
constexpr size_t max_names = 64;
std::array<std::array<char, 4096>, max_names> doomed;
std::mutex names; // held by whoever changes them

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

void doom(const std::string& name) {
    const std::lock_guard changing(names);
    watch_signals();
    for (auto& entry : doomed)
        if (entry[0] == '\0' && name.size() < entry.size()) {
            std::memcpy(entry.data(), name.c_str(), name.size() + 1);
            return;
        }
}

void spare(const std::string& name) {
    const std::lock_guard changing(names);
    for (auto& entry : doomed)
        if (name == entry.data())
            entry[0] = '\0';
}

[[noreturn]] void cannot_write(const std::string& path) {
    system_failure("{}: cannot be written: {}", path, std::strerror(errno));
}

bool is_stale(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)
        || time(nullptr) - status.st_mtime < youngest_stale)
        return false;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return false;
    const bool unused = flock(fd, LOCK_EX | LOCK_NB) == 0;
    close(fd);
    return unused;
}

// Once in a process: with a file for each module, a directory has thousands of names.
void remove_stale_files(const std::string& directory) {
    static std::set<std::string> done;
    const std::lock_guard changing(names);
    if (!done.insert(directory).second)
        return;
    DIR* const entries = opendir(directory.empty() ? "." : directory.c_str());
    if (entries == nullptr)
        return;
    while (const dirent* entry = readdir(entries)) {
        const std::string_view name = entry->d_name;
        const std::string path = directory + entry->d_name;
        if (name.size() == pattern.size() && name.starts_with(prefix) && is_stale(path))
            unlink(path.c_str());
    }
    closedir(entries);
}

} // namespace

TemporaryFile::TemporaryFile(const std::string& path) : path_(path) {
    const std::string directory = directory_of(path);
    remove_stale_files(directory);
    std::string name = directory + std::string(pattern);
    const SignalsWait until_it_is_doomed;
    descriptor_ = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        cannot_write(path);
    flock(descriptor_, LOCK_EX | LOCK_NB);
    name_ = name;
    doom(name_);
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_(std::move(other.path_)), name_(std::exchange(other.name_, {})),
      descriptor_(std::exchange(other.descriptor_, -1)) {}

TemporaryFile::~TemporaryFile() {
    if (descriptor_ >= 0)
        close(descriptor_);
    if (!name_.empty()) {
        unlink(name_.c_str());
        spare(name_);
    }
}

void TemporaryFile::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(descriptor_, bytes.data(), bytes.size());
        if (n < 0 && errno != EINTR)
            cannot_write(path_);
        bytes.remove_prefix(n > 0 ? static_cast<size_t>(n) : 0);
    }
}

void TemporaryFile::finish(unsigned mode) {
    if (fchmod(descriptor_, mode) != 0 || fsync(descriptor_) != 0)
        cannot_write(path_);
}

void TemporaryFile::rename_to_place() {
    if (rename(name_.c_str(), path_.c_str()) != 0)
        cannot_write(path_);
    spare(name_);
    name_.clear();
}

Backup::Backup(const std::string& path) : path_(path), existed_(access(path.c_str(), F_OK) == 0) {
    if (!existed_)
        return;
    // Locked, so that nobody takes the second name for a stale one.
    descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor_ >= 0)
        flock(descriptor_, LOCK_SH | LOCK_NB);
    // A name that is free, taken from a file that goes at once.
    std::string name = directory_of(path) + std::string(pattern);
    const int fd = mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        return;
    close(fd);
    unlink(name.c_str());
    if (link(path.c_str(), name.c_str()) != 0)
        return;
    name_ = name;
    doom(name_);
}

Backup::Backup(Backup&& other) noexcept
    : path_(std::move(other.path_)), name_(std::exchange(other.name_, {})), existed_(other.existed_),
      descriptor_(std::exchange(other.descriptor_, -1)) {}

Backup::~Backup() {
    if (descriptor_ >= 0)
        close(descriptor_);
    if (name_.empty())
        return;
    unlink(name_.c_str());
    spare(name_);
}

void Backup::restore() {
    if (!existed_)
        unlink(path_.c_str());
    else if (!name_.empty() && rename(name_.c_str(), path_.c_str()) == 0)
        spare(std::exchange(name_, {}));
}

namespace {

// The signals that watch_signals() watches.
sigset_t ending_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

} // namespace

SignalsWait::SignalsWait() {
    const sigset_t signals = ending_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

SignalsWait::~SignalsWait() {
    const sigset_t signals = ending_signals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

} // namespace zerklsc::tool
