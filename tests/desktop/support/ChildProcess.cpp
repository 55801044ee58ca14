#include "desktop/support/ChildProcess.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <fcntl.h>
#include <grp.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <unistd.h>

namespace framora {

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment, const Options& options) {
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([options] {
        if (options.user &&
            (::setgroups(0, nullptr) != 0 || ::setgid(*options.user) != 0 || ::setuid(*options.user) != 0))
            ::_exit(126);
        // A change of the user takes this back, so it comes after.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (options.inheritedDescriptor >= 0)
            ::fcntl(options.inheritedDescriptor, F_SETFD, 0);
    });
    m_process.start(program, arguments);
    if (!m_process.waitForStarted())
        throw std::runtime_error("cannot start " + program.toStdString());
    m_pid = m_process.processId();
}

ChildProcess::~ChildProcess() {
    end();
}

bool ChildProcess::isRunning() {
    // Without an event loop QProcess learns of an end only while it is asked to wait.
    return m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(0);
}

int ChildProcess::exitCode() {
    return isRunning() || m_process.exitStatus() != QProcess::NormalExit ? -1 : m_process.exitCode();
}

bool ChildProcess::waitForExit(int timeoutMs) {
    return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(timeoutMs);
}

void ChildProcess::end() {
    if (!isRunning())
        return;
    m_process.terminate();
    if (!waitForExit(1000))
        kill();
}

void ChildProcess::kill() {
    if (!isRunning())
        return;
    m_process.kill();
    waitForExit(2000);
}

QByteArray ChildProcess::output() {
    if (m_process.state() != QProcess::NotRunning)
        m_process.waitForReadyRead(0);
    m_output += m_process.readAll();
    return m_output;
}

qint64 ChildProcess::residentKilobytes(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/statm").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const auto fields = file.readAll().split(' ');
    return fields.size() < 2 ? 0 : fields[1].toLongLong() * (::sysconf(_SC_PAGESIZE) / 1024);
}

int ChildProcess::openDescriptors(qint64 pid) {
    return int(QDir(QStringLiteral("/proc/%1/fd").arg(pid))
                   .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                   .size());
}

std::vector<qint64> ChildProcess::childrenOf(qint64 pid) {
    std::vector<qint64> result;
    const auto tasks =
        QDir(QStringLiteral("/proc/%1/task").arg(pid)).entryList(QDir::NoDotAndDotDot | QDir::Dirs);
    for (const QString& task : tasks) {
        QFile file(QStringLiteral("/proc/%1/task/%2/children").arg(pid).arg(task));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const auto fields = file.readAll().split(' ');
        for (const QByteArray& field : fields)
            if (const qint64 child = field.trimmed().toLongLong())
                result.push_back(child);
    }
    return result;
}

QString ChildProcess::nameOf(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().trimmed()) : QString();
}

} // namespace framora
