#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace framora::raster {
namespace {

std::atomic<int> threadLimit = 0;
thread_local int serialScopes = 0;

/// Asking is a file of the system's to read.
int processors() {
    static const int count = int(std::max(1u, std::thread::hardware_concurrency()));
    return count;
}

struct Job {
    const std::function<void(int)>* body;
    int count;
    int freeSeats;   ///< How many more workers may join. Guarded by the pool's mutex.
    int workers = 0; ///< Workers inside. Guarded by the pool's mutex.
    std::atomic<int> next = 0;
    std::atomic_flag hasFailed = {};
    std::exception_ptr error = {}; ///< The first one; to be read when no worker is inside any more.
    /// The one that this is a part of: whose body asked for it. It waits for this one.
    const Job* whole = current;

    static thread_local const Job* current; ///< Whose body this thread is inside, if any.

    void run() {
        const Job* const outer = std::exchange(current, this);
        attempt([this] {
            for (int i = next.fetch_add(1); i < count; i = next.fetch_add(1))
                (*body)(i);
        });
        current = outer;
    }

    template <typename Call> void attempt(const Call& call) {
        try {
            call();
        } catch (...) {
            if (!hasFailed.test_and_set())
                error = std::current_exception();
            next.store(count);
        }
    }

    bool isWaiting() const { return freeSeats > 0 && next.load() < count; }
    bool isPartOf(const Job& other) const {
        const Job* job = whole;
        while (job && job != &other)
            job = job->whole;
        return job;
    }
};

thread_local const Job* Job::current = nullptr;

/// The waiting threads. They are detached and share this state, so that the process can end, and a forked
/// child can exit, without anybody joining them.
class Pool : public std::enable_shared_from_this<Pool> {
public:
    /// Does the job, with `here` before it on this thread, and waits for those who have joined. Meanwhile it
    /// joins in what they wait for themselves; in nothing else, which might take long.
    void run(Job& job, const std::function<void()>* here = nullptr) {
        {
            std::lock_guard lock(m_mutex);
            startThreads();
            m_jobs.push_back(&job);
        }
        m_work.notify_all();
        m_done.notify_all();
        if (here)
            job.attempt(*here);
        job.run();
        std::unique_lock lock(m_mutex);
        const auto isPart = [&](const Job* other) { return other->isPartOf(job) && other->isWaiting(); };
        while (job.workers > 0) {
            if (const auto part = std::ranges::find_if(m_jobs, isPart); part != m_jobs.end())
                join(**part, lock);
            else
                m_done.wait(lock);
        }
        m_jobs.erase(std::ranges::find(m_jobs, &job));
        lock.unlock();
        if (job.error)
            std::rethrow_exception(job.error);
    }

private:
    void startThreads() {
        if (m_started)
            return;
        m_started = true;
        const int count = processors() - 1;
        try {
            for (int i = 0; i < count; ++i)
                std::thread([self = shared_from_this()] { self->work(); }).detach();
        } catch (const std::exception&) {
            // The caller works with those that there are.
        }
    }

    void work() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            Job* job = nullptr;
            m_work.wait(lock, [&] { return (job = waitingJob()) != nullptr; });
            join(*job, lock);
        }
    }

    void join(Job& job, std::unique_lock<std::mutex>& lock) {
        --job.freeSeats;
        ++job.workers;
        lock.unlock();
        job.run();
        lock.lock();
        if (--job.workers == 0)
            m_done.notify_all();
    }

    Job* waitingJob() const {
        for (Job* job : m_jobs)
            if (job->isWaiting())
                return job;
        return nullptr;
    }

    std::mutex m_mutex;
    std::condition_variable m_work;
    std::condition_variable m_done;
    std::vector<Job*> m_jobs;
    bool m_started = false;
};

Pool& pool() {
    static const std::shared_ptr<Pool> shared = std::make_shared<Pool>();
    return *shared;
}

int allowedThreads() {
    if (serialScopes > 0)
        return 1;
    const int limit = threadLimit.load();
    return limit > 0 ? limit : processors();
}

} // namespace

bool mayUseThreads() {
    return allowedThreads() > 1;
}

void parallelFor(int count, const std::function<void(int)>& body) {
    const int threads = std::min(allowedThreads(), count);
    if (threads <= 1) {
        for (int i = 0; i < count; ++i)
            body(i);
        return;
    }
    Job job{&body, count, threads - 1};
    pool().run(job);
}

void callBeside(const std::function<void()>& here, const std::function<void()>& beside) {
    if (!mayUseThreads()) {
        here();
        beside();
        return;
    }
    const std::function<void(int)> body = [&](int) { beside(); };
    Job job{&body, 1, 1};
    pool().run(job, &here);
}

void setParallelThreadLimit(int threads) {
    threadLimit.store(threads);
}

SerialScope::SerialScope() {
    ++serialScopes;
}

SerialScope::~SerialScope() {
    --serialScopes;
}

} // namespace framora::raster
