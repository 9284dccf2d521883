// The library prints its warnings on standard output, which belongs to the tool's results.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace zerklsc::tool {

// From construction to finish(), what the process prints on standard output is kept here instead. There is
// one at a time: other threads wait.
class LibraryMessages {
  public:
    LibraryMessages();
    ~LibraryMessages();
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

    // The lines that were printed, each with how often.
    std::map<std::string, int> finish();

  private:
    std::unique_lock<std::mutex> alone_;
    int saved_; // the real standard output, or -1 when it is back in place
    int kept_;  // the file that takes the lines
};

} // namespace zerklsc::tool
