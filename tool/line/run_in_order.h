// Work on all cores whose results come in the order in which it was handed out.
#pragma once

#include <functional>

namespace zerklsc::tool {

// What remains to be done with a result, one at a time.
using Finish = std::function<void()>;
// A piece of work for any thread.
using Task = std::function<Finish()>;

// Calls `next` for one task after another until it gives none, runs at most `jobs` of them at a time, and
// calls what they return in the order of the tasks. At most four times as many are in hand, so that one that
// takes long does not stop the others at once. What a call throws ends it all, and is thrown from here.
void run_in_order(int jobs, const std::function<Task()>& next);

// As many as this process may use.
int usual_jobs();

} // namespace zerklsc::tool
