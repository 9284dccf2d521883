// The files that a command writes: all of them appear complete, or none is touched.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "io/byte_sink.h"
#include "io/temporary_file.h"

namespace zerklsc::tool {

// add() writes each file under a temporary name beside its place and brings it to the disk; commit() moves
// them into place, and undoes what it has moved when one of them cannot be. Without commit(), and when a
// signal ends the process, the temporary files are removed. A symbolic link is followed, and a file that
// exists keeps its mode. What is not a regular file (a pipe, a device) is written at once, as is "-", the
// standard output.
class OutputSet {
  public:
    void add(const std::string& path, std::string_view bytes);
    // The same in pieces: `writer` hands them to the sink that it is given.
    void add(const std::string& path, const std::function<void(const ByteSink&)>& writer);
    void commit();

  private:
    std::vector<TemporaryFile> pending_;
};

// What messages call an output: "standard output" for "-".
std::string output_name(const std::string& path);

// One file of its own.
void write_file(const std::string& path, std::string_view bytes);
void write_file(const std::string& path, const std::function<void(const ByteSink&)>& writer);

// Whether an output went to the standard output, so that reports must not.
bool standard_output_is_taken();

} // namespace zerklsc::tool
