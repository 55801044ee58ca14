#pragma once

#include <QProcess>

#include <optional>
#include <vector>

namespace framora {

/// One program that a test started: it is asked to end, then made to, when this goes away, and the kernel
/// ends it should the test itself be killed.
class ChildProcess {
public:
    struct Options {
        int inheritedDescriptor = -1;      ///< Stays open in the child when not negative.
        std::optional<unsigned> user = {}; ///< Runs as this user, in the group of the same number.
    };

    /// Throws std::runtime_error when the program cannot be launched.
    ChildProcess(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
                 const Options& options);
    ChildProcess(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment)
        : ChildProcess(program, arguments, environment, Options()) {}
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    qint64 pid() const { return m_pid; }
    bool isRunning();
    /// -1 while it runs or when a signal ended it.
    int exitCode();
    bool waitForExit(int timeoutMs = 10000);
    /// SIGTERM, then SIGKILL when it does not go within a second.
    void end();
    void kill();

    /// Everything it has written on either stream so far.
    QByteArray output();
    QProcess& process() { return m_process; }

    /// Figures from /proc; 0 when the process is gone.
    qint64 residentKilobytes() const { return residentKilobytes(m_pid); }
    int openDescriptors() const { return openDescriptors(m_pid); }
    std::vector<qint64> children() const { return childrenOf(m_pid); }

    static qint64 residentKilobytes(qint64 pid);
    static int openDescriptors(qint64 pid);
    static std::vector<qint64> childrenOf(qint64 pid);
    /// File name of the program, as the kernel shows it (at most 15 characters).
    static QString nameOf(qint64 pid);

private:
    QProcess m_process;
    QByteArray m_output;
    qint64 m_pid = 0;
};

} // namespace framora
