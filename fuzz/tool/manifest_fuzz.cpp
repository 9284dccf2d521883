// Any bytes as a manifest: every line is a module or says why it is none, and the survey, in parts of a few
// serials, finds those that come again.
#include <cstdlib>
#include <set>
#include <string>

#include "failure.h"
#include "line/manifest.h"
#include "support/input.h"
#include "support/memory_file.h"

namespace {

using namespace zerklsc::tool;

void read_manifest(const std::string& path, const Shard& shard, size_t at_once) {
    Manifest manifest(path);
    std::set<std::string> serials;
    ManifestSurvey expected;
    while (const auto module = manifest.next()) {
        if (module->fault.empty() && (module->serial.empty() || module->files.empty()))
            std::abort();
        if (module->serial.empty() || !shard.has(module->serial))
            continue;
        ++expected.modules;
        if (!serials.insert(module->serial).second)
            expected.repeats.push_back(module->line);
    }
    const ManifestSurvey survey = survey_manifest(path, shard, at_once);
    if (survey.modules != expected.modules || survey.repeats != expected.repeats)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zerklsc::fuzz::Input input(data, size);
    const uint8_t choice = input.take<uint8_t>();
    const zerklsc::fuzz::MemoryFile file(input.rest());
    try {
        read_manifest(file.path(), {1, 1U + choice % 3}, 1U + choice / 3 % 4);
    } catch (const Failure&) {
        // Refused in words, as it should be.
    }
    return 0;
}
