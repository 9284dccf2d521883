// run_in_order, usual_jobs
#include "line/run_in_order.h"

#include <atomic>
#include <exception>
#include <memory>

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

namespace zerklsc::tool {
namespace {

namespace tbb = oneapi::tbb;

// Throws what has been caught when its turn has come.
Finish thrower() {
    return [caught = std::current_exception()] { std::rethrow_exception(caught); };
}

Finish finish_of(const Task& task) {
    try {
        return task();
    } catch (...) {
        return thrower();
    }
}

std::shared_ptr<Finish> run_task(const std::shared_ptr<Task>& task) {
    return std::make_shared<Finish>(finish_of(*task));
}

} // namespace

// Nothing is thrown through the pipeline, which would lose what it holds at that moment.
void run_in_order(int jobs, const std::function<Task()>& next) {
    const tbb::global_control more_than_cores(tbb::global_control::max_allowed_parallelism,
                                              static_cast<size_t>(jobs));
    std::atomic<bool> ended = false;
    std::exception_ptr thrown; // by the last of all
    const auto take = [&](tbb::flow_control& control) -> std::shared_ptr<Task> {
        auto task = std::make_shared<Task>();
        try {
            if (!ended)
                *task = next();
        } catch (...) {
            *task = [fault = thrower()] { return fault; };
            ended = true;
        }
        if (!*task)
            control.stop();
        return task;
    };
    const auto finish = [&](const std::shared_ptr<Finish>& result) {
        if (thrown)
            return;
        try {
            (*result)();
        } catch (...) {
            thrown = std::current_exception();
            ended = true;
        }
    };
    const auto whole =
        tbb::make_filter<void, std::shared_ptr<Task>>(tbb::filter_mode::serial_in_order, take)
        & tbb::make_filter<std::shared_ptr<Task>, std::shared_ptr<Finish>>(tbb::filter_mode::parallel,
                                                                           &run_task)
        & tbb::make_filter<std::shared_ptr<Finish>, void>(tbb::filter_mode::serial_in_order, finish);
    tbb::task_arena arena(jobs);
    arena.execute([&] { tbb::parallel_pipeline(static_cast<size_t>(4 * jobs), whole); });
    if (thrown)
        std::rethrow_exception(thrown);
}

int usual_jobs() {
    return tbb::info::default_concurrency();
}

} // namespace zerklsc::tool
