// What a command has found: text for people, and the same as a JSON document for programs.
#pragma once

#include <string>

#include "failure.h"
#include "io/json_value.h"

namespace zerklsc::tool {

// A command adds what it knows as soon as it knows it, so that a refusal still comes with the numbers.
class Report {
  public:
    // Lines for people, each with its line break.
    void print(const std::string& lines) { text_ += lines; }
    // A field of the document.
    void add(const char* name, JsonValue value) { document_.add(name, std::move(value)); }
    // The fields of an object.
    void append(const JsonValue& fields) { document_.append(fields); }

    // The verdict of success is "warn", even where no warning was given.
    void doubt() { doubtful_ = true; }

    const std::string& text() const { return text_; }
    // The document: "verdict", "exit_code", "message" where the command gave up, "warnings", then the fields.
    // The verdict is "pass", "warn", "fail" (a limit), "refuse" (the input) or "error" (usage, system).
    std::string json(ExitCode code, const std::string& message) const;

  private:
    std::string text_;
    bool doubtful_ = false;
    JsonValue document_ = JsonValue::object();
};

} // namespace zerklsc::tool
