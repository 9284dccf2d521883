// The files that a command writes: all of them appear complete, or none is touched.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

// add() writes each file under a temporary name beside its place and brings it to the disk; commit() moves
// them into place. Without commit(), and when a signal ends the process, the temporary files are removed.
// What is not a regular file (a pipe, a device) is written at once.
class OutputSet {
  public:
    OutputSet() = default;
    ~OutputSet();
    OutputSet(const OutputSet&) = delete;
    OutputSet& operator=(const OutputSet&) = delete;

    void add(const std::string& path, const std::string& bytes);
    void commit();

  private:
    struct Pending {
        std::string temporary, path;
    };
    std::vector<Pending> pending_;
};

// One file of its own.
void write_file(const std::string& path, const std::string& bytes);

} // namespace zerklsc::tool
