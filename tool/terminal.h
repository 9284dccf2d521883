// What the tool writes to standard error. Writing there never fails: where nobody listens, nothing is lost.
#pragma once

#include <string>
#include <vector>

namespace zerklsc::tool {

// The text with its control characters escaped, so that a file name with a line break stays in its line.
std::string one_line(const std::string& text);

// One line about why a command gives up.
void say(const std::string& message);

// One line about something that does not stop the command but that the user should know. Said once however
// often it is found.
void warn(const std::string& message);

// The same of one line among any number of them: it is not kept.
void remark(const std::string& message);

// All warnings of this run.
const std::vector<std::string>& warnings();

// From here on, warnings are only kept, and no progress is shown.
void be_quiet();

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
