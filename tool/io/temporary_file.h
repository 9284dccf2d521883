// A file that is written beside its place under a name of ours, and leaves nothing behind when the process
// ends.
#pragma once

#include <string>
#include <string_view>

namespace zerklsc::tool {

// The temporary files are called ".zerklsc-XXXXXX", which fits whatever length the final name has. A signal
// (INT, TERM, HUP) removes those of this process. What a killed process left is recognised by its name, its
// age and by nobody holding its lock, and goes when the next temporary file is made in that directory.
class TemporaryFile {
  public:
    // In the directory of `path`, which messages name.
    explicit TemporaryFile(const std::string& path);
    ~TemporaryFile();
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view bytes);
    // Brings the bytes to the disk, with the mode that the file is to have.
    void finish(unsigned mode);
    // Moves the file to its place.
    void rename_to_place();

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::string name_; // empty once it is in place
    int descriptor_;   // stays open: it holds the lock that tells others that the file is in use
};

// A second name in the same directory for the file at `path`, kept until it is put back or the object goes.
class Backup {
  public:
    // Does nothing where `path` does not exist, or where the file system knows no second names.
    explicit Backup(const std::string& path);
    ~Backup();
    Backup(Backup&& other) noexcept;
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

    // Puts the file back, or removes what has appeared where there was none.
    void restore();

  private:
    std::string path_;
    std::string name_; // empty: no second name
    bool existed_;
    int descriptor_ = -1;
};

// Keeps signals that end the process waiting, so that what has to happen together does.
class SignalsWait {
  public:
    SignalsWait();
    ~SignalsWait();
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
};

} // namespace zerklsc::tool
