// survey_manifest
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "failure.h"
#include "io/sha256.h"
#include "line/manifest.h"

namespace zerklsc::tool {
namespace {

constexpr size_t most_repeats = 1000000;

struct Entry {
    std::array<uint8_t, 16> digest;
    uint64_t line;

    auto operator<=>(const Entry&) const = default; // NOLINT(modernize-use-nullptr): its 0 is the compiler's
};

Entry entry_of(const Module& module) {
    Entry entry{{}, module.line};
    const auto digest = sha256_of(module.serial);
    std::copy_n(digest.begin(), entry.digest.size(), entry.digest.begin());
    return entry;
}

template <class Use>
void for_each(const std::string& path, const Shard& shard, const Use& use) {
    Manifest manifest(path);
    while (const std::optional<Module> module = manifest.next())
        if (!module->serial.empty() && shard.has(module->serial))
            use(*module);
}

void add_repeats(std::vector<Entry>& entries, std::vector<uint64_t>& repeats) {
    std::ranges::sort(entries);
    for (size_t i = 1; i < entries.size(); ++i)
        if (entries[i].digest == entries[i - 1].digest)
            repeats.push_back(entries[i].line);
}

} // namespace

ManifestSurvey survey_manifest(const std::string& path, const Shard& shard, size_t at_once) {
    ManifestSurvey survey;
    for_each(path, shard, [&](const Module&) { ++survey.modules; });
    // The serials fall into parts by a byte sequence that the shards do not choose by.
    const uint64_t parts = survey.modules / at_once + 1;
    for (uint64_t part = 0; part < parts; ++part) {
        std::vector<Entry> entries;
        for_each(path, shard, [&](const Module& module) {
            const Entry entry = entry_of(module);
            const uint64_t other = uint64_t{entry.digest[8]} << 24 | uint64_t{entry.digest[9]} << 16
                                   | uint64_t{entry.digest[10]} << 8 | entry.digest[11];
            if (other % parts == part)
                entries.push_back(entry);
        });
        add_repeats(entries, survey.repeats);
        if (survey.repeats.size() > most_repeats)
            data_failure("{}: more than {} of its serials stand in an earlier line too: it is no list of "
                         "modules",
                         path, most_repeats);
    }
    std::ranges::sort(survey.repeats);
    return survey;
}

} // namespace zerklsc::tool
