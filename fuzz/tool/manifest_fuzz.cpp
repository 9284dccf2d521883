// Any bytes as a manifest: every line is a module or says why it is none, and the survey, in parts of a few
// serials, finds those that come again.
#include <set>

#include "line/manifest.h"
#include "support/input.h"
#include "support/memory_file.h"
#include "support/reader.h"

namespace {

using namespace zerklsc::fuzz;
using namespace zerklsc::tool;

void read_manifest(const std::string& path, const Shard& shard, size_t at_once) {
    Manifest manifest(path);
    std::set<std::string> serials;
    ManifestSurvey expected;
    while (const auto module = manifest.next()) {
        expect(!module->fault.empty() || (!module->serial.empty() && !module->files.empty()));
        if (module->serial.empty() || !shard.has(module->serial))
            continue;
        ++expected.modules;
        if (!serials.insert(module->serial).second)
            expected.repeats.push_back(module->line);
    }
    const ManifestSurvey survey = survey_manifest(path, shard, at_once);
    expect(survey.modules == expected.modules && survey.repeats == expected.repeats);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const uint8_t choice = input.take<uint8_t>();
    const MemoryFile file(input.rest());
    return read_or_refused([&] { read_manifest(file.path(), {1, 1U + choice % 3}, 1U + choice / 3 % 4); });
}
