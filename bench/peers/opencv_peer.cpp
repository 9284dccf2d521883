// OpenCV on one thread: the gains of each plane resized cubically, and multiplied in.
#include "peers/peers.h"

#if defined(ZERKLSC_HAVE_OPENCV)

#include <memory>

#include <opencv2/imgproc.hpp>

#include "frames.h"

namespace zerklsc::bench {
namespace {

struct Job {
    static constexpr int32_t width = 4000, height = 3000, step = 64;
    std::vector<uint16_t> raw = flat_field(width, height);
    std::vector<uint16_t> out = raw;
    Tables tables{width, height, step, ZERKLSC_ALGORITHM_ORVEL};
    cv::Mat planes[ZERKLSC_CHANNELS], corrected[ZERKLSC_CHANNELS], nodes[ZERKLSC_CHANNELS], gains;

    Job() {
        cv::setNumThreads(1);
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            planes[c] = cv::Mat(height / 2, width / 2, CV_16U, cv::Scalar(500));
            cv::Mat(tables.table_h, tables.table_w, CV_16U, tables.gains[c].data())
                .convertTo(nodes[c], CV_32F, 1.0 / int{ZERKLSC_UNITY_GAIN});
        }
    }
};

} // namespace

std::vector<Peer> opencv_peers() {
    const auto job = std::make_shared<Job>();
    const auto theirs = [=] {
        for (int c = 0; c < ZERKLSC_CHANNELS; ++c) {
            cv::resize(job->nodes[c], job->gains, job->planes[c].size(), 0, 0, cv::INTER_CUBIC);
            cv::multiply(job->planes[c], job->gains, job->corrected[c], 1, CV_16U);
        }
    };
    const auto ours = [=] { lsc2d_correction_wrapper(job->raw.data(), job->out.data(), &job->tables.info); };
    return {{"OpenCV " CV_VERSION, "four gain grids to 4000 x 3000 pixels, cubic, and multiplied in", theirs,
             ours}};
}

} // namespace zerklsc::bench

#else

std::vector<zerklsc::bench::Peer> zerklsc::bench::opencv_peers() {
    return {};
}

#endif
