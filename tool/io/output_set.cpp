// OutputSet, write_file, standard_output_is_taken
#include "io/output_set.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"
#include "io/directory.h"
#include "io/file_identity.h"

namespace zerklsc::tool {

std::string output_name(const std::string& path) {
    return path == "-" ? "standard output" : path;
}
namespace {

bool standard_output_taken = false;

// A descriptor that is not a regular file's.
class Channel {
  public:
    explicit Channel(const std::string& path)
        : path_(path), descriptor_(path == "-" ? STDOUT_FILENO : open(path.c_str(), O_WRONLY | O_CLOEXEC)) {
        if (descriptor_ < 0)
            fail();
    }
    ~Channel() {
        if (descriptor_ != STDOUT_FILENO)
            close(descriptor_);
    }
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    void write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t n = ::write(descriptor_, bytes.data(), bytes.size());
            if (n < 0 && errno != EINTR)
                fail();
            bytes.remove_prefix(n > 0 ? static_cast<size_t>(n) : 0);
        }
    }

  private:
    [[noreturn]] void fail() const {
        system_failure("{}: cannot be written: {}", output_name(path_), std::strerror(errno));
    }

    std::string path_;
    int descriptor_;
};

// mkstemp() makes a file for its owner alone; the user expects what the umask says.
mode_t plain_file_mode() {
    static const mode_t mode = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return 0666 & ~mask;
    }();
    return mode;
}

} // namespace

void OutputSet::add(const std::string& path, const std::function<void(const ByteSink&)>& writer) {
    struct stat status {};
    const bool exists = path != "-" && stat(path.c_str(), &status) == 0;
    if (path != "-" && !exists && errno == ELOOP)
        system_failure("{}: cannot be written: {}", path, std::strerror(errno));
    if (exists && S_ISDIR(status.st_mode))
        usage_failure("{}: is a directory, not a file to write: give a file name inside it", path);
    if (path == "-" || (exists && !S_ISREG(status.st_mode))) {
        standard_output_taken = standard_output_taken || path == "-";
        const Channel channel(path);
        writer([&](std::string_view bytes) { channel.write(bytes); });
        return;
    }
    TemporaryFile file(link_target(path));
    writer([&](std::string_view bytes) { file.write(bytes); });
    file.finish(exists ? status.st_mode & 07777 : plain_file_mode());
    pending_.push_back(std::move(file));
}

void OutputSet::add(const std::string& path, std::string_view bytes) {
    add(path, [&](const ByteSink& sink) { sink(bytes); });
}

void OutputSet::commit() {
    const SignalsWait until_all_are_in_place;
    std::vector<Backup> backups;
    if (pending_.size() > 1)
        for (const TemporaryFile& file : pending_)
            backups.emplace_back(file.path());
    for (size_t i = 0; i < pending_.size(); ++i) {
        try {
            pending_[i].rename_to_place();
        } catch (const Failure&) {
            for (size_t done = 0; done < i; ++done)
                backups[done].restore();
            throw;
        }
        sync_directory_of(pending_[i].path());
    }
    pending_.clear();
}

void write_file(const std::string& path, const std::function<void(const ByteSink&)>& writer) {
    OutputSet outputs;
    outputs.add(path, writer);
    outputs.commit();
}

void write_file(const std::string& path, std::string_view bytes) {
    write_file(path, [&](const ByteSink& sink) { sink(bytes); });
}

bool standard_output_is_taken() {
    return standard_output_taken;
}

} // namespace zerklsc::tool
