// Journal
#include "line/journal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"
#include "io/directory.h"
#include "io/line_reader.h"
#include "terminal.h"

namespace zerklsc::tool {
namespace {

constexpr int lines_of_a_group = 64;
constexpr std::chrono::seconds longest_unsynced{1};
// A table of every node of a large sensor has no longer line.
constexpr size_t longest_result_line = size_t{1} << 28;

// Whether a line that is no result can be the beginning of one, or a block that never came to the disk.
bool may_be_torn(std::string_view text) {
    constexpr std::string_view beginning = "{\"format\":\"zerklsc-result\"";
    const size_t length = std::min(text.size(), beginning.size());
    return text.substr(0, length) == beginning.substr(0, length)
           || std::ranges::all_of(text, [](char c) { return c == '\0'; });
}

} // namespace

Journal::Journal(const std::string& path)
    : path_(path), descriptor_(open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666)),
      synced_(std::chrono::steady_clock::now()) {
    struct stat status {};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0)
        system_failure("{}: cannot be written: {}", path_, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) {
        close(descriptor_);
        usage_failure("{}: is no regular file: results are read again when a batch goes on", path_);
    }
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        close(descriptor_);
        system_failure("{}: another batch is writing it: wait for its end, or give another name", path_);
    }
    size_ = static_cast<uint64_t>(status.st_size);
    sync_directory_of(path_);
}

Journal::~Journal() {
    fdatasync(descriptor_);
    close(descriptor_);
}

void Journal::take_up(const std::function<void(const ResultLine&, const std::string&)>& use) {
    LineReader lines(path_, longest_result_line);
    bool any = false;
    while (const std::optional<Line> line = lines.next()) {
        const std::string place = fmt::format("{}:{}", path_, line->number);
        std::optional<ResultLine> result;
        std::string fault = "it is cut off";
        try {
            if (line->whole && !line->too_long)
                result = result_line_of(line->text, place);
        } catch (const Failure& failure) {
            fault = failure.what();
        }
        if (result) {
            use(*result, place);
            any = true;
            continue;
        }
        if (!any && !may_be_torn(line->text))
            data_failure("{}: holds no results of zerklsc batch: give another name", path_);
        const uint64_t offset = line->offset;
        int behind = 0;
        while (lines.next())
            if (++behind > lines_of_a_group)
                data_failure(
                    "{}: is damaged, and more than {} lines follow: keep the lines before it alone, and "
                    "the same command makes the others again ({})",
                    place, lines_of_a_group, fault);
        cut_torn_end(offset);
        return;
    }
}

void Journal::cut_torn_end(uint64_t offset) {
    warn(fmt::format("{}: the last {} bytes are torn, as by a kill: they are cut off and made again", path_,
                     size_ - offset));
    if (ftruncate(descriptor_, static_cast<off_t>(offset)) != 0)
        system_failure("{}: cannot be cut: {}", path_, std::strerror(errno));
    size_ = offset;
    sync();
}

void Journal::append(const std::string& line) {
    const std::string text = line + '\n';
    for (size_t done = 0; done < text.size();) {
        const ssize_t n = write(descriptor_, text.data() + done, text.size() - done);
        if (n < 0 && errno != EINTR) {
            const int reason = errno;
            // Where even that fails, the next run finds a torn end.
            if (ftruncate(descriptor_, static_cast<off_t>(size_)) == 0)
                fdatasync(descriptor_);
            system_failure("{}: cannot be written: {}: what it holds is whole, and the same command goes on",
                           path_, std::strerror(reason));
        }
        done += n > 0 ? static_cast<size_t>(n) : 0;
    }
    size_ += text.size();
    if (++unsynced_ >= lines_of_a_group || std::chrono::steady_clock::now() - synced_ >= longest_unsynced)
        sync();
}

void Journal::sync() {
    if (fdatasync(descriptor_) != 0)
        system_failure("{}: cannot be brought to the disk: {}", path_, std::strerror(errno));
    unsynced_ = 0;
    synced_ = std::chrono::steady_clock::now();
}

} // namespace zerklsc::tool
