// What the tool writes to standard error. Writing there never fails: where nobody listens, nothing is lost.
#pragma once

#include <chrono>
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

// While one lives, what its thread warns of is kept there and nowhere else.
class WarningsApart {
  public:
    WarningsApart();
    ~WarningsApart();
    WarningsApart(const WarningsApart&) = delete;
    WarningsApart& operator=(const WarningsApart&) = delete;

    const std::vector<std::string>& warnings() const { return kept_; }

  private:
    std::vector<std::string> kept_;
    std::vector<std::string>* before_;
};

// From here on, warnings are only kept, and no progress is shown.
void be_quiet();

// A line that changes while many things are done, shown to a person at a terminal a few times a second.
class ProgressLine {
  public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Whether the line would be shown now.
    bool is_due();
    void show(const std::string& text);
    // Before something else is written to standard error.
    void clear();

  private:
    bool wanted_;
    bool shown_ = false;
    std::chrono::steady_clock::time_point last_;
};

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
