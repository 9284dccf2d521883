// The results file of a batch: only ever appended to, and what a killed run is taken up from.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include "line/result_line.h"

namespace zerklsc::tool {

class Journal {
  public:
    // Opens or makes the file and keeps it for this process alone. A failure when it is no regular file or
    // somebody else writes it.
    explicit Journal(const std::string& path);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Hands over what the file holds, line by line, with its place for messages. What a kill has torn at the
    // end is cut off with a warning; a data failure where the file is none of results, or where more is
    // damaged than can have been on its way to the disk.
    void take_up(const std::function<void(const ResultLine&, const std::string& place)>& use);

    // Appends a line, and brings what was appended to the disk from time to time. On a failure, no part of
    // the line stays.
    void append(const std::string& line);

    // Brings all to the disk.
    void sync();

  private:
    void cut_torn_end(uint64_t offset);

    std::string path_;
    int descriptor_;
    uint64_t size_ = 0;
    int unsynced_ = 0; // lines
    std::chrono::steady_clock::time_point synced_;
};

} // namespace zerklsc::tool
