// The filter and the sampling of windows, small and large.
#include <algorithm>
#include <memory>

#include <fmt/core.h>

#include "frames.h"
#include "sampling/plain.h"
#include "workload.h"

namespace zerklsc::bench {
namespace {

// A window, and the sigma that its record points to; the disc of the Gaussian reaches as far as the window.
struct Filter {
    float sigma;
    imfilter_t record;

    Filter(int32_t type, int32_t radius, int32_t mode = ZERKLSC_BOUNDARY_MIRROR)
        : sigma(static_cast<float>(radius) / 2.087f), record{type, radius, mode, &sigma} {}
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;

    std::string name() const {
        return fmt::format("{}, radius {}", record.filter_type == ZERKLSC_FILTER_BOX ? "box" : "Gaussian",
                           record.filter_radius);
    }
};

Filter random_filter(testing::Random& random, int32_t max_radius) {
    return Filter(static_cast<int32_t>(random.between(0, 1)),
                  static_cast<int32_t>(random.between(1, max_radius)),
                  static_cast<int32_t>(random.between(0, 1)));
}

std::string compare_filter(testing::Random& random) {
    const Filter filter = random_filter(random, 20);
    const auto rows = static_cast<int32_t>(random.between(1, 60)),
               columns = static_cast<int32_t>(random.between(1, 80));
    const auto margin = static_cast<size_t>(filter.record.filter_radius * (rows + 1));
    const auto size = static_cast<size_t>((rows - 1) * rows + columns);
    const testing::Guarded<uint16_t> src(
        testing::random_samples(random, 2 * margin + size,
                                static_cast<testing::Spread>(random.between(0, 2))),
        testing::Against::back);
    const std::vector<uint16_t> samples = src.copy();
    std::vector<uint16_t> fast(size), plain(size);
    img_filter(samples.data() + margin, fast.data(), rows, columns, &filter.record);
    plain::filter_plane(samples.data() + margin, plain.data(), rows, columns, filter.record);
    return fast == plain ? "" : fmt::format("{} x {}, {}", columns, rows, filter.name());
}

std::string compare_grid(testing::Random& random) {
    const auto width = static_cast<int32_t>(random.between(41, 150)),
               height = static_cast<int32_t>(random.between(41, 90));
    const auto step_x = static_cast<int32_t>(random.between(1, 12)),
               step_y = static_cast<int32_t>(random.between(1, 12));
    const Filter filter = random_filter(random, 40);
    const auto plane = testing::random_samples(random, static_cast<size_t>(width * height),
                                               static_cast<testing::Spread>(random.between(0, 2)));
    int32_t columns, rows;
    lsc2d_grid_samples(width, height, step_x, step_y, &columns, &rows);
    std::vector<float> fast(static_cast<size_t>(columns * rows)), plain(fast.size());
    img_sample_grid(plane.data(), fast.data(), width, height, step_x, step_y, columns, rows, &filter.record);
    plain::sample_grid(plane.data(), plain.data(), width, height, step_x, step_y, columns, rows,
                       filter.record);
    return fast == plain
               ? ""
               : fmt::format("{} x {}, steps {} and {}, {}", width, height, step_x, step_y, filter.name());
}

// The plane of a 12-megapixel frame with its grid, and a square inside it that keeps the filter's margin.
struct Job {
    static constexpr int32_t width = 2000, height = 1500, step = 64, side = 1024, margin = 200;
    Filter filter;
    std::vector<uint16_t> plane = flat_field(width, height);
    std::vector<uint16_t> filtered = std::vector<uint16_t>(size_t{side} * side);
    std::vector<float> levels = std::vector<float>(33 * 25);
    std::vector<pix_point> points;

    Job(int32_t type, int32_t radius) : filter(type, radius) {
        pix_point* cluster = nullptr;
        int32_t count = 0;
        init_center_points(width, height, &cluster, &count);
        points.assign(cluster, cluster + count);
        release_center_points(cluster);
    }

    const uint16_t* inside() const { return plane.data() + margin * (side + 1); }
};

Workload filter_row(int32_t type, int32_t radius) {
    const auto job = std::make_shared<Job>(type, radius);
    constexpr int32_t side = Job::side;
    return {
        .name = fmt::format("img_filter, {}, 1024 x 1024", job->filter.name()),
        .frame_bytes = size_t{side} * side * sizeof(uint16_t),
        .fast = [=] { img_filter(job->inside(), job->filtered.data(), side, side, &job->filter.record); },
        .plain =
            [=] { plain::filter_plane(job->inside(), job->filtered.data(), side, side, job->filter.record); },
        .at_most = {},
        .at_least = {}};
}

Workload grid_row(int32_t type, int32_t radius) {
    const auto job = std::make_shared<Job>(type, radius);
    const auto by = [job](auto sample) {
        return [job, sample] {
            sample(job->plane.data(), job->levels.data(), Job::width, Job::height, Job::step, Job::step, 33,
                   25, job->filter.record);
        };
    };
    const auto fast = [](const uint16_t* plane, float* levels, int32_t width, int32_t height, int32_t step_x,
                         int32_t step_y, int32_t columns, int32_t rows, const imfilter_t& filter) {
        img_sample_grid(plane, levels, width, height, step_x, step_y, columns, rows, &filter);
    };
    return {.name = fmt::format("img_sample_grid, {}, step 64", job->filter.name()),
            .frame_bytes = job->plane.size() * sizeof(uint16_t),
            .fast = by(fast),
            .plain = by(plain::sample_grid),
            .at_most = {},
            .at_least = {}};
}

Workload points_row(int32_t type, int32_t radius) {
    const auto job = std::make_shared<Job>(type, radius);
    const auto count = static_cast<int32_t>(job->points.size());
    return {.name = fmt::format("img_sample, {}, {} points", job->filter.name(), count),
            .frame_bytes = job->plane.size() * sizeof(uint16_t),
            .fast =
                [=] {
                    img_sample(job->plane.data(), job->points.data(), count, Job::width, Job::height,
                               &job->filter.record);
                },
            .plain =
                [=] {
                    plain::sample_points(job->plane.data(), job->points.data(), count, Job::width,
                                         Job::height, job->filter.record);
                },
            .at_most = {},
            .at_least = {}};
}

} // namespace

std::vector<Workload> sampling_workloads() {
    constexpr int32_t box = ZERKLSC_FILTER_BOX, gaussian = ZERKLSC_FILTER_GAUSSIAN;
    return {filter_row(box, 4),      filter_row(box, 64),      filter_row(box, 200),
            filter_row(gaussian, 4), filter_row(gaussian, 16), filter_row(gaussian, 64),
            grid_row(box, 16),       grid_row(box, 256),       grid_row(gaussian, 16),
            grid_row(gaussian, 64),  points_row(box, 64),      points_row(gaussian, 64)};
}

std::vector<Check> sampling_checks() {
    return {{"img_filter", compare_filter}, {"img_sample_grid", compare_grid}};
}

} // namespace zerklsc::bench
