// The list of a line's modules, read one line at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "io/line_reader.h"

namespace zerklsc::tool {

// A module as a line of the manifest describes it.
struct Module {
    uint64_t line = 0; // of the manifest, from 1
    std::string serial;
    std::vector<std::string> files; // as they are written there
    std::optional<std::string> preset, illuminant;
    std::string fault; // why nothing can be done with it; empty where something can
};

// Beyond this, a line is none of a manifest.
constexpr size_t longest_manifest_line = 65536;

// Of a serial: it names files, and stands in messages.
constexpr size_t longest_module_serial = 64;

// CSV (RFC 4180; a first line with the names serial, files, preset and illuminant in any order, of which the
// last two may be missing; files with ';' between), or JSON lines: {"serial", "files": [...], "preset",
// "illuminant"}. Which of them it is shows in the first byte. Empty lines are skipped.
class Manifest {
  public:
    // A failure when it cannot be read, or when the first line of a CSV is none of names.
    explicit Manifest(const std::string& path);

    // The next module, or nothing at the end. Where a line is wrong, the module says why; its serial is
    // empty where that could not be read.
    std::optional<Module> next();

  private:
    Module from_csv(std::string_view line) const;
    std::optional<Line> next_line();
    void read_names(std::string_view line);

    std::string path_;
    LineReader lines_;
    std::optional<Line> first_;        // read already, where it holds no names
    std::vector<std::string> columns_; // of a CSV
};

// A module of a line of JSON.
Module module_from_json(std::string_view line);

// The first 64 bits of the SHA-256 of a serial's bytes, as `printf %s SERIAL | sha256sum` begins.
uint64_t hash_of_serial(const std::string& serial);

// One of the shares into which modules fall by their serials: hash_of_serial() modulo `count` is `number -
// 1`.
struct Shard {
    uint64_t number = 1;
    uint64_t count = 1;

    bool has(const std::string& serial) const { return hash_of_serial(serial) % count == number - 1; }
};

// "2/5"; nothing for any other text.
std::optional<Shard> shard_from(const std::string& text);

// How many modules of a manifest fall into a shard, and which of its lines repeat the serial of an earlier
// one.
struct ManifestSurvey {
    uint64_t modules = 0;
    std::vector<uint64_t> repeats; // lines, in rising order
};

// Takes memory for `at_once` serials, 24 bytes each, whatever the manifest's length: it is read once for
// every so many of them, and once more. Serials are told apart by 128 bits of their SHA-256. A data failure
// beyond a million repeats.
ManifestSurvey survey_manifest(const std::string& path, const Shard& shard, size_t at_once = size_t{1} << 21);

} // namespace zerklsc::tool
