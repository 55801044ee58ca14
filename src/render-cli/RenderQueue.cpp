#include "render-cli/RenderQueue.h"

#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace framora {
namespace {

int processors() {
    return std::max(1, int(std::thread::hardware_concurrency()));
}

} // namespace

RenderQueue::RenderQueue(int jobsAtOnce) : m_jobsAtOnce(jobsAtOnce > 0 ? jobsAtOnce : processors()) {}

int RenderQueue::run(int count, const Job& job, const Report& report,
                     const std::function<bool()>& isCancelled) {
    std::mutex mutex;
    int next = 0;
    int done = 0;
    int succeeded = 0;

    // Each picture divides its own work too: the fewer run, the more threads each gets.
    const auto share = [](int running) {
        raster::setParallelThreadLimit(std::max(1, processors() / running));
    };
    int running = std::clamp(m_jobsAtOnce, 1, std::max(1, count));
    share(running);

    const auto work = [&] {
        std::unique_lock lock(mutex);
        while (next < count && !isCancelled()) {
            const int index = next++;
            lock.unlock();
            const QString error = job(index);
            lock.lock();
            succeeded += error.isEmpty();
            report(++done, error);
        }
        if (--running > 0)
            share(running);
    };
    {
        std::vector<std::jthread> helpers;
        const int helpersNeeded = running - 1;
        try {
            while (int(helpers.size()) < helpersNeeded)
                helpers.emplace_back(work);
        } catch (const std::exception&) {
            // No more threads: by those that there are.
            const std::lock_guard lock(mutex);
            running -= helpersNeeded - int(helpers.size());
            share(running);
        }
        work();
    }
    raster::setParallelThreadLimit(0);
    return count - succeeded;
}

} // namespace framora
