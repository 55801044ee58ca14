#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace framora {

/// Runs one job a picture, some of them at once, without more threads than there are processors in all.
class RenderQueue {
public:
    /// Gives one line on failure, and throws nothing. Called from several threads.
    using Job = std::function<QString(int index)>;
    /// How many are done now, and the failure of the one that just ended. Called from one thread at a time.
    using Report = std::function<void(int done, const QString& error)>;

    /// `jobsAtOnce` 0 is one for each processor.
    explicit RenderQueue(int jobsAtOnce);

    /// Returns when every job has ended, or, once `isCancelled` says so, when those that run have: the number
    /// that failed or never ran.
    int run(int count, const Job& job, const Report& report, const std::function<bool()>& isCancelled);

private:
    const int m_jobsAtOnce;
};

} // namespace framora
