// What the tool writes to standard error beside failures.
#pragma once

#include <string>

namespace zerklsc::tool {

// One line about something that does not stop the command but that the user should know.
void warn(const std::string& message);

// Says what takes so long while it lasts, and only to a person at a terminal.
class Progress {
  public:
    explicit Progress(const std::string& activity);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

  private:
    bool shown_;
};

} // namespace zerklsc::tool
