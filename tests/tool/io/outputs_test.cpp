// Files that are written beside their place: what stands there at each step, and who may touch it.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "failure.h"
#include "io/file_identity.h"
#include "io/output_set.h"
#include "io/temporary_file.h"

namespace zerklsc::tool {
namespace {

namespace fs = std::filesystem;

// An empty folder, which goes with all that is in it.
class Folder {
  public:
    Folder() {
        std::string name = fs::temp_directory_path() / "zerklsc-test-XXXXXX";
        path_ = std::string(mkdtemp(name.data())) + "/";
    }
    ~Folder() { fs::remove_all(path_); }
    std::string operator/(const std::string& name) const { return path_ + name; }
    // The names, in order, with the permissions and the contents of files.
    std::string listed() const {
        std::vector<std::string> entries;
        for (const auto& entry : fs::directory_iterator(path_)) {
            std::string name = entry.path().filename();
            const bool temporary = name.starts_with(".zerklsc-") && name.size() == 15;
            struct stat status {};
            stat(entry.path().c_str(), &status);
            entries.push_back((temporary ? "*" : name) + "=" + content(entry.path())
                              + (status.st_mode & 077 ? "" : "!"));
        }
        std::sort(entries.begin(), entries.end());
        std::string all;
        for (const std::string& entry : entries)
            all += (all.empty() ? "" : " ") + entry;
        return all;
    }
    void make(const std::string& name, const std::string& content, int seconds_old = 0) const {
        std::ofstream(path_ + name) << content;
        const timespec times[2] = {{time(nullptr) - seconds_old, 0}, {time(nullptr) - seconds_old, 0}};
        utimensat(AT_FDCWD, (path_ + name).c_str(), times, 0);
    }

  private:
    static std::string content(const fs::path& path) {
        if (fs::is_directory(path))
            return "";
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::string path_;
};

bool is_locked(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY);
    const bool locked = flock(fd, LOCK_EX | LOCK_NB) != 0;
    close(fd);
    return locked;
}

TEST(TemporaryFile, IsItsOwnersUntilItIsInPlace) {
    const Folder folder;
    {
        TemporaryFile first(folder / "a");
        first.write("one");
        first.write("");
        first.write(" two");
        EXPECT_EQ(folder.listed(), "*=one two!");
        EXPECT_TRUE(is_locked(fs::directory_iterator(folder / "")->path()));
        const TemporaryFile second(std::move(first));
        EXPECT_EQ(folder.listed(), "*=one two!");
        EXPECT_EQ(second.path(), folder / "a");
    }
    EXPECT_EQ(folder.listed(), "");
    folder.make("a", "old");
    {
        TemporaryFile file(folder / "a");
        file.write("new");
        file.finish(0640);
        EXPECT_EQ(folder.listed(), "*=new a=old");
        file.rename_to_place();
        EXPECT_EQ(folder.listed(), "a=new");
        struct stat status {};
        stat((folder / "a").c_str(), &status);
        EXPECT_EQ(status.st_mode & 07777U, 0640U);
    }
    EXPECT_EQ(folder.listed(), "a=new");
    EXPECT_THROW(TemporaryFile(folder / "none/a"), Failure);
}

TEST(TemporaryFile, RemovesWhatNobodyUses) {
    const Folder folder;
    for (const char* name :
         {".zerklsc-aaaaaa", ".zerklsc-aaaaa", ".zerklsc-aaaaaaa", ".zerklsx-aaaaaa", "zerklsc--aaaaaa"})
        folder.make(name, "x", 61);
    folder.make(".zerklsc-bbbbbb", "young", 57);
    folder.make(".zerklsc-cccccc", "held", 100);
    folder.make(".zerklsc-dddddd", "y", 1000000);
    const int held = open((folder / ".zerklsc-cccccc").c_str(), O_RDONLY);
    flock(held, LOCK_SH);
    { const TemporaryFile file(folder / "a"); }
    EXPECT_EQ(folder.listed(),
              "*=held *=young .zerklsc-aaaaa=x .zerklsc-aaaaaaa=x .zerklsx-aaaaaa=x zerklsc--aaaaaa=x");
    close(held);
}

TEST(Backup, PutsBackWhatWasThereOrNothing) {
    const Folder folder;
    folder.make("a", "old");
    {
        const Backup unused(folder / "a");
        EXPECT_EQ(folder.listed(), "*=old a=old");
        EXPECT_TRUE(is_locked(folder / "a"));
    }
    EXPECT_EQ(folder.listed(), "a=old");
    {
        Backup first(folder / "a"), none(folder / "b");
        Backup backup(std::move(first));
        fs::remove(folder / "a");
        folder.make("a", "new");
        folder.make("b", "new");
        backup.restore();
        none.restore();
        EXPECT_EQ(folder.listed(), "a=old");
    }
    EXPECT_EQ(folder.listed(), "a=old");
}

TEST(OutputSet, MovesAllIntoPlaceOrNothing) {
    const Folder folder;
    fs::create_directory(folder / "below");
    for (const bool fails : {false, true}) {
        folder.make("a", "old");
        {
            OutputSet outputs;
            for (const char* name : {"a", "b", "below/c"})
                outputs.add(folder / name, "new");
            if (fails)
                fs::remove_all(folder / "below");
            if (fails)
                EXPECT_THROW(outputs.commit(), Failure);
            else
                outputs.commit();
        }
        EXPECT_EQ(folder.listed(), fails ? "a=old" : "a=new b=new below=");
        fs::remove(folder / "b");
    }
}

std::string waiting() {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    std::string numbers;
    for (int signal = 1; signal < 32; ++signal)
        numbers += sigismember(&blocked, signal) == 1 ? std::to_string(signal) + " " : "";
    return numbers;
}

TEST(SignalsWait, KeepsTheThreeThatEndTheProcess) {
    EXPECT_EQ(waiting(), "");
    {
        const SignalsWait wait;
        EXPECT_EQ(waiting(), "1 2 15 ");
    }
    EXPECT_EQ(waiting(), "");
}

// Forty links are followed, as the kernel does.
TEST(FileIdentity, FollowsLinksAsFarAsTheKernel) {
    const Folder folder;
    for (int i = 0; i <= 40; ++i)
        fs::create_symlink(i == 0 ? "end" : "link" + std::to_string(i - 1),
                           folder / ("link" + std::to_string(i)));
    EXPECT_EQ(link_target(folder / "link40"), folder / "link40");
    EXPECT_EQ(link_target(folder / "link39"), folder / "end");
    EXPECT_EQ(link_target(folder / "link0"), folder / "end");
    fs::create_symlink(folder / "link0", folder / "absolute");
    EXPECT_EQ(link_target(folder / "absolute"), folder / "end");
}

} // namespace
} // namespace zerklsc::tool
