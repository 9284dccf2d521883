// lensfun: its vignetting modifier on 16-bit data.
#include "peers/peers.h"

#if defined(ZERKLSC_HAVE_LENSFUN)

#include <memory>

#include <lensfun/lensfun.h>

#include "frames.h"

namespace zerklsc::bench {
namespace {

struct Job {
    static constexpr int32_t width = 4000, height = 3000, step = 64;
    std::vector<uint16_t> frame = flat_field(width, height);
    std::vector<uint16_t> raw = frame;
    Tables tables{width, height, step, ZERKLSC_ALGORITHM_ORVEL};
    lfLens lens;
    std::unique_ptr<lfModifier> modifier;

    Job() {
        constexpr float focal = 28, aperture = 2, distance = 10;
        const lfLensCalibVignetting calibration{
            LF_VIGNETTING_MODEL_PA, focal, aperture, distance, {-0.5f, 0.1f, -0.1f}};
        lens.AddCalibVignetting(&calibration);
        lens.CropFactor = 1;
        lens.Type = LF_RECTILINEAR;
        modifier = std::make_unique<lfModifier>(&lens, 1.0f, width, height);
        modifier->Initialize(&lens, LF_PF_U16, focal, aperture, distance, 1.0f, LF_RECTILINEAR,
                             LF_MODIFY_VIGNETTING, false);
    }
};

} // namespace

std::vector<Peer> lensfun_peers() {
    const auto job = std::make_shared<Job>();
    const auto theirs = [=] {
        job->modifier->ApplyColorModification(job->frame.data(), 0, 0, Job::width, Job::height,
                                              LF_CR_1(INTENSITY),
                                              Job::width * static_cast<int>(sizeof(uint16_t)));
    };
    const auto ours = [=] { lsc2d_correction_wrapper(job->raw.data(), job->raw.data(), &job->tables.info); };
    return {{"lensfun", "vignetting of 4000 x 3000 16-bit samples, in place", theirs, ours}};
}

} // namespace zerklsc::bench

#else

std::vector<zerklsc::bench::Peer> zerklsc::bench::lensfun_peers() {
    return {};
}

#endif
